// The colours of a map on the grid that is drawn. Its arrays are made once and used again for every map.
import type { RunImages } from "./run_images";
import { paintRegion, tint, type TintOptions } from "./tint";
import type { ReplyMap } from "./maps_reply";

export class OverlayPainter {
  private readonly colours: Uint32Array; // [place]
  private readonly drawn: Uint32Array; // [voxel of the display grid]

  constructor(private readonly images: RunImages) {
    this.colours = new Uint32Array(images.mask.cells.length);
    this.drawn = new Uint32Array(images.placeOf.length);
  }

  // map null: the region alone. The result holds until the next call.
  paint(map: ReplyMap | null, options: TintOptions, region: readonly number[]): Uint32Array {
    if (map === null) this.colours.fill(0);
    else tint(map, options, this.colours);
    paintRegion(region, this.colours);
    const { placeOf } = this.images;
    for (let n = 0; n < placeOf.length; ++n) {
      const place = placeOf[n] ?? -1;
      this.drawn[n] = place < 0 ? 0 : (this.colours[place] ?? 0);
    }
    return this.drawn;
  }
}
