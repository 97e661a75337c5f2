// What a key does while a plane has the focus.
import type { Axis, Plane } from "./planes";

export type Action =
  | { readonly do: "move"; readonly axis: Axis; readonly by: number }
  | { readonly do: "toggle" } // the map on or off
  | { readonly do: "threshold"; readonly by: 1 | -1 };

const kFar = 5; // voxels, with shift

function moveOf(key: string, plane: Plane): readonly [Axis, number] | null {
  switch (key) {
    case "ArrowLeft":
      return [plane.across, -1];
    case "ArrowRight":
      return [plane.across, 1];
    case "ArrowUp":
      return [plane.up, 1];
    case "ArrowDown":
      return [plane.up, -1];
    case "PageUp":
      return [plane.through, 1];
    case "PageDown":
      return [plane.through, -1];
    default:
      return null;
  }
}

// null: the key is not the viewer's.
export function actionOf(key: string, shift: boolean, plane: Plane): Action | null {
  if (key === " ") return { do: "toggle" };
  if (key === "[") return { do: "threshold", by: -1 };
  if (key === "]") return { do: "threshold", by: 1 };
  const move = moveOf(key, plane);
  return move === null ? null : { do: "move", axis: move[0], by: move[1] * (shift ? kFar : 1) };
}
