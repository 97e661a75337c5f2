// Keeps the maps of the state what the state asks for.
import type { Server } from "../server";
import type { MapsRequest } from "./explore_data";
import type { ExploreState } from "./explore_state";
import { MapRequests, type Asked } from "./map_requests";
import { decodeMaps } from "./maps_reply";
import type { Store } from "./store";

const kAsking: readonly (keyof ExploreState)[] = ["reference", "condition", "type", "settings"];

export function requestOf({ reference, condition, type, settings }: ExploreState): MapsRequest {
  return { reference, condition, types: [type], settings };
}

// Whether there is a reference to ask for.
export function hasReference({ reference }: ExploreState): boolean {
  return reference.kind !== "voxels" || reference.cells.length > 0;
}

export class MapSource {
  private readonly requests: MapRequests;

  constructor(
    private readonly store: Store<ExploreState>,
    server: Server,
  ) {
    this.requests = new MapRequests(
      (asked, signal) => server.binary("/api/explore/maps", asked, signal),
      {
        arrived: (reply, asked) => {
          this.arrived(reply, asked);
        },
        failed: (error) => {
          const problem = error instanceof Error ? error.message : String(error);
          store.change({ problem, waiting: false });
        },
      },
      {
        after: (ms, work) => window.setTimeout(work, ms),
        cancel: (timer) => {
          window.clearTimeout(timer);
        },
      },
    );
    store.on(kAsking, () => {
      this.ask();
    });
  }

  ask(): void {
    if (!hasReference(this.store.now)) {
      this.requests.stop();
      this.store.change({ maps: null, waiting: false });
      return;
    }
    this.store.change({ waiting: true });
    this.requests.move(requestOf(this.store.now));
  }

  stop(): void {
    this.requests.stop();
  }

  private arrived(reply: ArrayBuffer, asked: Asked): void {
    // What came for another map or condition would be shown under a wrong name.
    const { type, condition } = this.store.now;
    if (asked.types[0] !== type || asked.condition !== condition) return;
    this.store.change({ maps: decodeMaps(reply), waiting: asked.draft, problem: null });
  }
}
