import assert from "node:assert/strict";
import { describe, it } from "node:test";
import type { MapsRequest } from "../src/workbench/explore/explore_data";
import { MapRequests, type Asked } from "../src/workbench/explore/map_requests";
import { ServerError } from "../src/workbench/server";

interface Waiting {
  readonly asked: Asked;
  readonly signal: AbortSignal;
  readonly answer: (reply: ArrayBuffer) => void;
  readonly refuse: (error: unknown) => void;
}

class Played {
  readonly sent: Waiting[] = [];
  readonly arrived: Asked[] = [];
  readonly failed: unknown[] = [];
  private timers: { readonly id: number; readonly work: () => void }[] = [];
  private made = 0;
  readonly requests = new MapRequests(
    (asked, signal) =>
      new Promise((answer, refuse) => {
        signal.addEventListener("abort", () => {
          refuse(new DOMException("", "AbortError"));
        });
        this.sent.push({ asked, signal, answer, refuse });
      }),
    {
      arrived: (_, asked) => this.arrived.push(asked),
      failed: (error) => this.failed.push(error),
    },
    {
      after: (_, work) => {
        this.made += 1;
        this.timers.push({ id: this.made, work });
        return this.made;
      },
      cancel: (id) => {
        this.timers = this.timers.filter((timer) => timer.id !== id);
      },
    },
  );

  rest(): void {
    const due = this.timers;
    this.timers = [];
    for (const { work } of due) work();
  }

  async answer(): Promise<void> {
    this.sent.at(-1)?.answer(new ArrayBuffer(0));
    await settled();
  }

  kinds(): string[] {
    return this.sent.map(({ asked }) => `${asked.draft ? "draft" : "full"} ${at(asked)}`);
  }
}

function settled(): Promise<void> {
  return new Promise((resolve) => setImmediate(resolve));
}

function at({ reference }: MapsRequest): number {
  return reference.kind === "label" ? reference.id : NaN;
}

function request(id: number): MapsRequest {
  return { reference: { kind: "label", id }, condition: "task", types: ["DTAV"], settings: {} };
}

describe("requests for maps", () => {
  it("have one draft under way, then the newest", async () => {
    const played = new Played();
    for (const id of [1, 2, 3]) played.requests.move(request(id));
    assert.deepEqual(played.kinds(), ["draft 1"]);
    await played.answer();
    assert.deepEqual(played.kinds(), ["draft 1", "draft 3"]);
  });

  it("ask for calibrated maps at rest, after the draft that is under way", async () => {
    const played = new Played();
    played.requests.move(request(1));
    played.rest();
    assert.deepEqual(played.kinds(), ["draft 1"]);
    await played.answer();
    assert.deepEqual(played.kinds(), ["draft 1", "full 1"]);
    await played.answer();
    assert.deepEqual(
      played.arrived.map(({ draft }) => draft),
      [true, false],
    );
  });

  it("give up calibrated maps when the reference moves on", async () => {
    const played = new Played();
    played.requests.move(request(1));
    await played.answer();
    played.rest();
    played.requests.move(request(2));
    await settled();
    assert.equal(played.sent[1]?.signal.aborted, true);
    assert.deepEqual(played.kinds(), ["draft 1", "full 1", "draft 2"]);
    assert.deepEqual(played.failed, []);
  });

  it("have rising numbers", async () => {
    const played = new Played();
    played.requests.move(request(1));
    await played.answer();
    played.rest();
    const [first, second] = played.sent.map(({ asked }) => asked.sequence);
    assert.ok((second ?? 0) > (first ?? 0));
  });

  it("pass over what was superseded and tell of what failed, and go on", async () => {
    const played = new Played();
    played.requests.move(request(1));
    played.sent[0]?.refuse(new ServerError("superseded", 409));
    await settled();
    assert.deepEqual(played.failed, []);
    played.requests.move(request(2));
    played.sent[1]?.refuse(new ServerError("no", 500));
    await settled();
    assert.equal(played.failed.length, 1);
    played.requests.move(request(3));
    assert.deepEqual(played.kinds(), ["draft 1", "draft 2", "draft 3"]);
  });

  it("stop when told", async () => {
    const played = new Played();
    played.requests.move(request(1));
    played.requests.stop();
    await settled();
    played.rest();
    assert.deepEqual([played.kinds(), played.failed], [["draft 1"], []]);
  });
});
