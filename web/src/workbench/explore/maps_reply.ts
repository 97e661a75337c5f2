// Maps as the program sends them: 4 bytes (how long the header is, little endian), a JSON header, then
// arrays, one value per voxel of the mask. Arrays are views of the reply: nothing is copied.

export interface ArrayHeader {
  readonly type: string;
  readonly what: "value" | "p" | "direction";
  readonly format: "float32" | "int16" | "uint8";
  readonly offset: number; // bytes from the start of the reply
  readonly scale?: number;
}

export interface ReplyThreshold {
  readonly q: number;
  readonly threshold: number | null; // null: no voxel passes
  readonly passing?: number;
}

export interface MapHeader {
  readonly type: string;
  readonly thresholds?: readonly ReplyThreshold[];
}

export interface ReplyHeader {
  readonly sequence: number;
  readonly draft: boolean;
  readonly voxels: number;
  readonly reference: { readonly name: string; readonly voxels: number };
  readonly condition: string;
  readonly elapsedMs: number;
  readonly draws?: number;
  readonly arrays: readonly ArrayHeader[];
  readonly maps?: readonly MapHeader[];
  readonly warnings?: readonly string[];
}

export type Numbers = Float32Array | Int16Array | Uint8Array;

// value = raw * scale; missing where raw is `missing` (or NaN).
export interface Coded {
  readonly raw: Numbers;
  readonly scale: number;
  readonly missing: number;
}

export interface ReplyMap {
  readonly type: string;
  readonly values: Coded;
  readonly p: Uint8Array | null; // -10 log10 p; 255: unknown
  readonly direction: Uint8Array | null;
  readonly thresholds: readonly ReplyThreshold[];
}

export interface MapsReply {
  readonly header: ReplyHeader;
  readonly maps: ReadonlyMap<string, ReplyMap>;
}

export const kUnknownP = 255;
const kMissingInt16 = -32768;
const kMakers = { float32: Float32Array, int16: Int16Array, uint8: Uint8Array } as const;

// Of whatever the program packed in this form.
export function packedHeader(reply: ArrayBuffer): unknown {
  const length = new DataView(reply).getUint32(0, true);
  if (4 + length > reply.byteLength) throw new RangeError("The program's maps end inside their header.");
  return JSON.parse(new TextDecoder().decode(new Uint8Array(reply, 4, length)));
}

// voxels: how many values the array has. Throws RangeError when the reply has fewer.
export function codedOf(
  reply: ArrayBuffer,
  { format, offset, scale = 1 }: ArrayHeader,
  voxels: number,
): Coded {
  const Maker = kMakers[format];
  if (offset + voxels * Maker.BYTES_PER_ELEMENT > reply.byteLength) {
    throw new RangeError("The program's maps end inside an array.");
  }
  return { raw: new Maker(reply, offset, voxels), scale, missing: format === "int16" ? kMissingInt16 : NaN };
}

function bytesOf(coded: Coded | undefined): Uint8Array | null {
  return coded?.raw instanceof Uint8Array ? coded.raw : null;
}

function mapOf(reply: ArrayBuffer, header: ReplyHeader, type: string): ReplyMap[] {
  const coded = (what: string): Coded | undefined => {
    const found = header.arrays.find((each) => each.type === type && each.what === what);
    return found === undefined ? undefined : codedOf(reply, found, header.voxels);
  };
  const values = coded("value");
  if (values === undefined) return [];
  const thresholds = header.maps?.find((map) => map.type === type)?.thresholds ?? [];
  return [{ type, values, p: bytesOf(coded("p")), direction: bytesOf(coded("direction")), thresholds }];
}

// Throws RangeError when the reply is shorter than its header says.
export function decodeMaps(reply: ArrayBuffer): MapsReply {
  const header = packedHeader(reply) as ReplyHeader;
  const types = [...new Set(header.arrays.map(({ type }) => type))];
  const maps = types.flatMap((type) => mapOf(reply, header, type));
  return { header, maps: new Map(maps.map((map) => [map.type, map])) };
}

// NaN: no value here.
export function valueAt({ raw, scale, missing }: Coded, place: number): number {
  const value = raw[place];
  return value === undefined || value === missing ? NaN : value * scale;
}
