// NIfTI images as arrays; of several volumes the first.
import { decompressAsync, isCompressed, isNIFTI, readHeader, readImage } from "nifti-reader-js";
import type { AffineRows, Triple } from "../../data/page_data";
import type { Image } from "./resampling";

type Reader = (view: DataView, byte: number, little: boolean) => number;

// By code of the format: bytes of a value, and how it is read.
const kReaders: Readonly<Partial<Record<number, readonly [number, Reader]>>> = {
  2: [1, (view, byte) => view.getUint8(byte)],
  4: [2, (view, byte, little) => view.getInt16(byte, little)],
  8: [4, (view, byte, little) => view.getInt32(byte, little)],
  16: [4, (view, byte, little) => view.getFloat32(byte, little)],
  64: [8, (view, byte, little) => view.getFloat64(byte, little)],
  256: [1, (view, byte) => view.getInt8(byte)],
  512: [2, (view, byte, little) => view.getUint16(byte, little)],
  768: [4, (view, byte, little) => view.getUint32(byte, little)],
};

interface Scaling {
  readonly scl_slope: number;
  readonly scl_inter: number;
}

function valuesOf(
  bytes: ArrayBuffer,
  count: number,
  code: number,
  little: boolean,
  scaling: Scaling,
): Float32Array {
  const reader = kReaders[code];
  if (reader === undefined)
    throw new RangeError(`The image has values of type ${code}, which the page cannot read.`);
  const [size, read] = reader;
  if (bytes.byteLength < size * count) throw new RangeError("The image ends before its last voxel.");
  const view = new DataView(bytes);
  const slope = Number.isFinite(scaling.scl_slope) && scaling.scl_slope !== 0 ? scaling.scl_slope : 1;
  const intercept = Number.isFinite(scaling.scl_inter) ? scaling.scl_inter : 0;
  const values = new Float32Array(count);
  for (let n = 0; n < count; ++n) values[n] = read(view, n * size, little) * slope + intercept;
  return values;
}

// Throws RangeError with a sentence for the reader.
export async function readNifti(file: ArrayBuffer): Promise<Image> {
  const bytes = isCompressed(file) ? await decompressAsync(file) : file;
  if (!isNIFTI(bytes)) throw new RangeError("The image is no NIfTI file.");
  const header = readHeader(bytes);
  const [, nx = 1, ny = 1, nz = 1] = header.dims;
  const size: Triple = [nx, ny, Math.max(nz, 1)];
  const count = size[0] * size[1] * size[2];
  const data = valuesOf(readImage(header, bytes), count, header.datatypeCode, header.littleEndian, header);
  return { size, affine: header.affine as AffineRows, data };
}
