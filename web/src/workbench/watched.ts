// What the program knows about something that goes on there: asked for as a whole, again after every event.
import { ServerError, isAbort, type Server } from "./server";

const kGatherMs = 100; // events that come close together are one change

export class Watched<T> {
  private stopEvents: (() => void) | null = null;
  private timer: number | null = null;
  private readonly onVisible = (): void => {
    if (!document.hidden) this.refresh();
  };

  // path: of the state; its events are at path + "/events".
  constructor(
    private readonly server: Server,
    private readonly path: string,
    private readonly show: (state: T) => void,
    private readonly tell: (message: string) => void,
  ) {}

  start(): void {
    if (this.stopEvents !== null) return;
    this.stopEvents = this.server.events(`${this.path}/events`, () => {
      this.refresh();
    });
    document.addEventListener("visibilitychange", this.onVisible);
    this.refresh();
  }

  stop(): void {
    this.stopEvents?.();
    this.stopEvents = null;
    document.removeEventListener("visibilitychange", this.onVisible);
  }

  refresh(): void {
    this.timer ??= window.setTimeout(() => {
      this.timer = null;
      void this.ask();
    }, kGatherMs);
  }

  private async ask(): Promise<void> {
    try {
      this.show(await this.server.get<T>(this.path));
    } catch (error) {
      if (!isAbort(error)) this.tell(messageOf(error));
    }
  }
}

export function messageOf(error: unknown): string {
  if (error instanceof ServerError || error instanceof Error) return error.message;
  return String(error);
}
