// The page's volumes by id, each decoded when first asked for.
import { bytesOfBase64, gunzip, wordsOf } from "./decoding";

export type Codes = Uint8Array | Uint16Array;

// The stored text of a volume; null: the page has none of this name.
export type TextSource = (id: string) => string | null;

export class VolumeStore {
  private readonly decoded = new Map<string, Promise<Uint8Array>>();

  constructor(private readonly textOf: TextSource) {}

  // Rejects when the volume is missing, broken, or not of `length` codes.
  async codes(id: string, type: "u8" | "u16", length: number): Promise<Codes> {
    const bytes = await this.bytes(id);
    const codes = type === "u16" ? wordsOf(bytes) : bytes;
    if (codes.length !== length) {
      throw new Error(`Volume ${id} has ${codes.length} values, not ${length}.`);
    }
    return codes;
  }

  private bytes(id: string): Promise<Uint8Array> {
    const known = this.decoded.get(id);
    if (known) return known;
    const coming = this.decode(id);
    this.decoded.set(id, coming);
    return coming;
  }

  private async decode(id: string): Promise<Uint8Array> {
    const text = this.textOf(id);
    if (text === null) throw new Error(`The page has no volume ${id}.`);
    return gunzip(bytesOfBase64(text));
  }
}

export function textOfElement(id: string): string | null {
  return document.getElementById(id)?.textContent ?? null;
}
