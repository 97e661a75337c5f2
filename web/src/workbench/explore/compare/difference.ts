// One map minus another, voxel by voxel. Thresholds are not made from thresholds: it has none, and no p.
import { valueAt, type ReplyMap } from "../maps_reply";

export function difference(a: ReplyMap, b: ReplyMap, out: Float32Array): ReplyMap {
  for (let n = 0; n < out.length; ++n) out[n] = valueAt(a.values, n) - valueAt(b.values, n);
  return {
    type: a.type,
    values: { raw: out, scale: 1, missing: NaN },
    p: null,
    direction: null,
    thresholds: [],
  };
}
