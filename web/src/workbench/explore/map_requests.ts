// Which maps are asked for, and when: drafts while the reference moves, one at a time and always the newest;
// when it rests, the calibrated maps.
import { isAbort, ServerError } from "../server";
import type { MapsRequest } from "./explore_data";
import { nextSequence } from "./sequence";

export interface Asked extends MapsRequest {
  readonly sequence: number;
  readonly draft: boolean;
}

export type Send = (asked: Asked, signal: AbortSignal) => Promise<ArrayBuffer>;

export interface MapHandlers {
  readonly arrived: (reply: ArrayBuffer, asked: Asked) => void;
  readonly failed: (error: unknown) => void;
}

export interface Clock {
  readonly after: (ms: number, work: () => void) => number;
  readonly cancel: (timer: number) => void;
}

export const kRestMs = 150;

const kSuperseded = 409;

function isSuperseded(error: unknown): boolean {
  return isAbort(error) || (error instanceof ServerError && error.status === kSuperseded);
}

export class MapRequests {
  private wantedDraft: MapsRequest | null = null;
  private wantedFull: MapsRequest | null = null;
  private underWay: { readonly draft: boolean; readonly abort: AbortController } | null = null;
  private timer = 0;

  constructor(
    private readonly send: Send,
    private readonly handlers: MapHandlers,
    private readonly clock: Clock,
  ) {}

  // The reference moves, or something else changed that maps depend on.
  move(request: MapsRequest): void {
    this.wantedDraft = request;
    this.wantedFull = null;
    if (this.underWay?.draft === false) this.underWay.abort.abort();
    this.clock.cancel(this.timer);
    this.timer = this.clock.after(kRestMs, () => {
      this.wantedFull = request;
      this.next();
    });
    this.next();
  }

  // Gives up what is under way and what waits.
  stop(): void {
    this.clock.cancel(this.timer);
    [this.wantedDraft, this.wantedFull] = [null, null];
    this.underWay?.abort.abort();
  }

  private next(): void {
    if (this.underWay !== null) return;
    const [draft, full] = [this.wantedDraft, this.wantedFull];
    [this.wantedDraft, this.wantedFull] = [null, draft === null ? null : full];
    if (draft !== null) void this.ask(draft, true);
    else if (full !== null) void this.ask(full, false);
  }

  private async ask(request: MapsRequest, draft: boolean): Promise<void> {
    const abort = new AbortController();
    this.underWay = { draft, abort };
    const asked = { ...request, sequence: nextSequence(), draft };
    try {
      const reply = await this.send(asked, abort.signal);
      this.underWay = null;
      if (!abort.signal.aborted) this.handlers.arrived(reply, asked);
    } catch (error) {
      this.underWay = null;
      if (!isSuperseded(error)) this.handlers.failed(error);
    }
    this.next();
  }
}
