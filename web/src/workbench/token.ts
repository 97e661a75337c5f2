// The token of this start of the program: it comes in the address's fragment, which no server sees, and
// is taken out of the address before anything else happens.

const kKey = "tavmap-token";

// The fragment is #token=TOKEN.
export function tokenOf(fragment: string): string | null {
  const token = new URLSearchParams(fragment.replace(/^#/, "")).get("token");
  return token === "" ? null : token;
}

// null: the page was opened without one.
export function takeToken(): string | null {
  const given = tokenOf(location.hash);
  if (given === null) return sessionStorage.getItem(kKey);
  sessionStorage.setItem(kKey, given);
  history.replaceState(null, "", location.pathname);
  return given;
}
