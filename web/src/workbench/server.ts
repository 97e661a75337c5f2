// The program behind the page. Every call carries the session's cookie; what changes something is a POST
// with the token of this start in its header.

export interface Server {
  get<T>(path: string, signal?: AbortSignal): Promise<T>;
  // JSON both ways; undefined where the answer is empty.
  post<T>(path: string, body: unknown, signal?: AbortSignal): Promise<T>;
  // A POST when there is a body, else a GET.
  binary(path: string, body?: unknown, signal?: AbortSignal): Promise<ArrayBuffer>;
  // Server-sent events; the data are JSON. Returns how to stop.
  events(path: string, on: (event: MessageEvent<string>) => void): () => void;
}

// message: the server's words. status 0: it did not answer.
export class ServerError extends Error {
  constructor(
    message: string,
    readonly status: number,
  ) {
    super(message);
    this.name = "ServerError";
  }
}

const kNoAnswer = "The program does not answer. Is tavmap workbench still running?";

const kUsual: RequestInit = { credentials: "same-origin", redirect: "error", cache: "no-store" };

export function isAbort(error: unknown): boolean {
  return error instanceof DOMException && error.name === "AbortError";
}

async function sent(path: string, request: RequestInit): Promise<Response> {
  try {
    return await fetch(path, { ...kUsual, ...request });
  } catch (error) {
    if (isAbort(error)) throw error;
    throw new ServerError(kNoAnswer, 0);
  }
}

function wordsOf(text: string, status: number): string {
  try {
    const { message } = JSON.parse(text) as { message?: unknown };
    if (typeof message === "string") return message;
  } catch {
    // Not JSON: what follows says at least which status it was.
  }
  return `The program refused with status ${status}.`;
}

async function answered(path: string, request: RequestInit): Promise<Response> {
  const response = await sent(path, request);
  if (response.ok) return response;
  throw new ServerError(wordsOf(await response.text(), response.status), response.status);
}

async function jsonOf<T>(response: Response): Promise<T> {
  const text = await response.text();
  return (text === "" ? undefined : JSON.parse(text)) as T;
}

export class HttpServer implements Server {
  constructor(private readonly token: string) {}

  async get<T>(path: string, signal?: AbortSignal): Promise<T> {
    return jsonOf<T>(await answered(path, withSignal({}, signal)));
  }

  async post<T>(path: string, body: unknown, signal?: AbortSignal): Promise<T> {
    return jsonOf<T>(await answered(path, withSignal(this.posted(body), signal)));
  }

  async binary(path: string, body?: unknown, signal?: AbortSignal): Promise<ArrayBuffer> {
    const request = body === undefined ? {} : this.posted(body);
    return (await answered(path, withSignal(request, signal))).arrayBuffer();
  }

  events(path: string, on: (event: MessageEvent<string>) => void): () => void {
    return whileVisible(() => {
      const source = new EventSource(path);
      source.addEventListener("message", on);
      return () => {
        source.close();
      };
    });
  }

  private posted(body: unknown): RequestInit {
    return {
      method: "POST",
      headers: { "Content-Type": "application/json", "X-Tavmap-Token": this.token },
      body: JSON.stringify(body),
    };
  }
}

// Browsers have few connections to one origin: pages that nobody sees hold none.
function whileVisible(start: () => () => void): () => void {
  let stop: (() => void) | null = null;
  const update = (): void => {
    if (document.hidden) {
      stop?.();
      stop = null;
    } else stop ??= start();
  };
  document.addEventListener("visibilitychange", update);
  update();
  return () => {
    document.removeEventListener("visibilitychange", update);
    stop?.();
  };
}

function withSignal(request: RequestInit, signal: AbortSignal | undefined): RequestInit {
  return signal === undefined ? request : { ...request, signal };
}
