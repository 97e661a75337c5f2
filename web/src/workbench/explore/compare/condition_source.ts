// The map of another condition, for the reference that is shown, asked for when that one's maps are
// calibrated.
import { isAbort, ServerError, type Server } from "../../server";
import type { Explorer } from "../explorer";
import { requestOf } from "../map_source";
import { decodeMaps } from "../maps_reply";
import { referenceWords } from "../reference";
import { nextSequence } from "../sequence";
import type { Store } from "../store";
import type { CompareState, Other } from "./compare_state";

export function watchCondition(
  explorer: Explorer,
  compare: Store<CompareState>,
  server: Server,
  region: () => readonly number[],
): void {
  let abort = new AbortController();
  const ask = async (): Promise<void> => {
    abort.abort();
    const { maps } = explorer.store.now;
    if (compare.now.with !== "condition" || maps === null || maps.header.draft) return;
    abort = new AbortController();
    try {
      compare.change({
        fetched: await fetched(explorer, compare.now.condition, server, region(), abort.signal),
      });
    } catch (error) {
      const replaced = isAbort(error) || (error instanceof ServerError && error.status === 409);
      if (!replaced)
        explorer.store.change({ problem: error instanceof Error ? error.message : String(error) });
    }
  };
  explorer.store.on(["maps"], () => void ask());
  compare.on(["with", "condition"], () => {
    compare.change({ fetched: null });
    void ask();
  });
}

async function fetched(
  explorer: Explorer,
  condition: string,
  server: Server,
  region: readonly number[],
  signal: AbortSignal,
): Promise<Other | null> {
  const now = explorer.store.now;
  const request = { ...requestOf(now), condition, sequence: nextSequence(), draft: false };
  const reply = decodeMaps(await server.binary("/api/explore/maps", request, signal));
  const map = reply.maps.get(now.type);
  if (map === undefined) return null;
  return { map, reference: referenceWords(now.reference, explorer.data.labels), condition, region };
}
