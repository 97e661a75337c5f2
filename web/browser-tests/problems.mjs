// What goes wrong in a page without a test seeing it.

const kLevels = new Set(["error", "warning", "warn"]); // Firefox's protocol says "warn"

// What the graphics of a browser without a graphics card remarks on when pictures are read back by the tests.
const kOfTheTests = /GL Driver Message|getImageData/;
// The program's answer to a question for maps when a newer one came: the page passes over it, the browser notes it.
const kSuperseded = /Failed to load resource.*\b409\b/;
const kOfRefusals = /Failed to load resource/;

// `problems` grows by every error, warning and request that leaves the origin. refusals: the program's are expected.
export function noteProblems(page, origin, problems, { refusals = false } = {}) {
  page.on("console", (message) => {
    const text = message.text();
    const expected = kOfTheTests.test(text) || kSuperseded.test(text) || (refusals && kOfRefusals.test(text));
    if (kLevels.has(message.type()) && !expected) problems.push(text);
  });
  page.on("pageerror", (error) => problems.push(String(error)));
  page.on("request", (request) => {
    const url = request.url();
    if (!url.startsWith(`${origin}/`) && !/^(data|blob):/.test(url)) problems.push(`request: ${url}`);
  });
}
