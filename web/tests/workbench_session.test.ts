import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { stateWords, type SessionData } from "../src/workbench/plugin/session_data";

describe("the state of a session", () => {
  const session: SessionData = {
    state: "running",
    log: [],
    question: null,
    busy: true,
    ending: false,
    maps: [],
    exitCode: 0,
    message: "",
    summary: "",
    anatomy: true,
    recorded: "",
  };

  it("says what the end of one waits for that computes", () => {
    assert.equal(stateWords(session), "The plug-in computes.");
    assert.match(stateWords({ ...session, ending: true }), /until then it computes/);
    assert.match(
      stateWords({ ...session, ending: true, state: "ended", exitCode: 1 }),
      /ended with a failure/,
    );
  });
});
