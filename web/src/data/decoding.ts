// Volumes are stored as base64 of gzip.

export function bytesOfBase64(text: string): Uint8Array<ArrayBuffer> {
  const characters = atob(text);
  const bytes = new Uint8Array(characters.length);
  for (let n = 0; n < characters.length; ++n) bytes[n] = characters.charCodeAt(n);
  return bytes;
}

export async function gunzip(bytes: Uint8Array<ArrayBuffer>): Promise<Uint8Array<ArrayBuffer>> {
  const stream = new Blob([bytes]).stream().pipeThrough(new DecompressionStream("gzip"));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

// Little endian, whatever the machine. Throws RangeError when a byte is left over.
export function wordsOf(bytes: Uint8Array): Uint16Array {
  if (bytes.length % 2 !== 0) throw new RangeError("A volume of 16-bit codes has an odd number of bytes.");
  const view = new DataView(bytes.buffer, bytes.byteOffset, bytes.byteLength);
  return Uint16Array.from({ length: bytes.length / 2 }, (_, n) => view.getUint16(2 * n, true));
}
