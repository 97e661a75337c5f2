// A browser and the built program for the tests of a file, as hooks: before(rig.begin), after(rig.end).
import assert from "node:assert/strict";

// launch and start make the browser and the program, each with close(). `problems` is for the pages; the end sees that
// there were none and that the program ended well.
export function rigOf(launch, start) {
  const rig = { browser: null, program: null, problems: [] };
  rig.begin = async () => {
    rig.browser = await launch();
    rig.program = await start();
  };
  rig.end = async () => {
    await rig.browser?.close();
    assert.equal(await rig.program?.close(), 0);
    assert.deepEqual(rig.problems, []);
  };
  return rig;
}
