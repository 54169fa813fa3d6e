// The gateway: one request, one reply. Every failure becomes one of the three errors below; the
// words for them are in results.js.

const kGateway = '/cgi-bin/zelto-cgi';
const kAtOnce = 2;
const kAlive = 9;

/** The gateway cannot be reached, or did not answer in time. */
export class Unreachable extends Error {}

/** The gateway itself refused: `word` is its reason. */
export class Rejected extends Error {
  constructor(status, word, retryAfter) {
    super(`${status} ${word}`);
    Object.assign(this, { status, word, retryAfter });
  }
}

/** The command ran and answered a `result` other than 0. */
export class Refused extends Error {
  constructor(type, result) {
    super(`${type}: ${result}`);
    Object.assign(this, { type, result });
  }
}

const hooks = {
  /** Asks the user for the administrator's password; resolves to null when given up. */
  password: async () => null,
  sessionEnded: () => {},
};
export const setHooks = (given) => Object.assign(hooks, given);

// The router runs few requests at once; more of them would only wait there, against its clock.
let running = 0;
const waiting = [];
async function inTurn(work) {
  if (running >= kAtOnce) await new Promise((go) => waiting.push(go));
  else running += 1;
  try {
    return await work();
  } finally {
    const next = waiting.shift();
    if (next) next();
    else running -= 1;
  }
}

async function post(request, { poll, signal, seconds = 90 }) {
  const control = new AbortController();
  const stop = () => control.abort();
  const timer = setTimeout(stop, seconds * 1000);
  signal?.addEventListener('abort', stop, { once: true });
  let response;
  let body;
  try {
    response = await fetch(poll ? `${kGateway}?poll` : kGateway, {
      method: 'POST',
      headers: { 'Content-Type': 'application/json' },
      body: JSON.stringify(request),
      credentials: 'same-origin',
      cache: 'no-store',
      signal: control.signal,
    });
    body = await response.json().catch(() => null);
  } catch (error) {
    if (signal?.aborted) throw new DOMException('stopped', 'AbortError');
    throw new Unreachable(error.message);
  } finally {
    clearTimeout(timer);
    signal?.removeEventListener('abort', stop);
  }
  if (response.ok && body && typeof body === 'object') return body;
  const retryAfter = Number(response.headers.get('Retry-After')) || 0;
  throw new Rejected(response.status, body?.error ?? '', retryAfter);
}

/** Sends a request as it is, asking for the password where the gateway wants it. */
export async function send(request, options = {}) {
  let given = options.password;
  for (let attempt = 0; ; attempt += 1) {
    try {
      const body = given === undefined ? request : { ...request, _password: given };
      return await inTurn(() => post(body, options));
    } catch (error) {
      if (!(error instanceof Rejected)) throw error;
      if (error.status === 401 && request.type !== 'loginauth') hooks.sessionEnded();
      const wanted = error.status === 403 && ['confirm', 'wrong_password'].includes(error.word);
      if (!wanted) throw error;
      given = await hooks.password(request.type, error.word === 'wrong_password');
      if (given === null) throw new DOMException('given up', 'AbortError');
    }
  }
}

/**
 * Runs a command. A `result` other than 0 (and other than those in `options.accept`) is thrown as
 * Refused.
 */
export async function call(type, members = {}, options = {}) {
  const reply = await send({ ...members, type }, options);
  const { result } = reply;
  const fine =
    result === undefined || result === 0 || (type === 'getheartbeat' && result === kAlive);
  if (!fine && !options.accept?.includes(result)) throw new Refused(type, result);
  return reply;
}

/** A refresh that the user did not ask for: it does not keep the session alive. */
export const poll = (type, members, options) =>
  call(type, members, { ...options, poll: true, seconds: 20 });

/** Whether there is a session. */
export async function hasSession() {
  try {
    await inTurn(() => post({ type: 'session' }, { seconds: 20 }));
    return true;
  } catch (error) {
    if (error instanceof Rejected && error.status === 401) return false;
    throw error;
  }
}

/**
 * What requests did to the router, where it keeps such a journal; null elsewhere. Gives the lines
 * behind the first `since` ones, none without it, and what to ask with `next`.
 */
export async function journal(since) {
  try {
    const query = since === undefined ? '' : `?since=${since}`;
    const response = await fetch(`/cgi-bin/journal${query}`, {
      credentials: 'same-origin',
      cache: 'no-store',
    });
    if (!response.ok) return null;
    const lines = (await response.text()).split('\n').filter(Boolean);
    return { lines, next: Number(response.headers.get('X-Journal-Next')) };
  } catch {
    return null;
  }
}

/** What commands there are. */
export async function catalogue() {
  const response = await fetch('/catalogue.json', { cache: 'no-cache' }).catch((error) => {
    throw new Unreachable(error.message);
  });
  if (!response.ok) throw new Rejected(response.status, '', 0);
  return (await response.json()).commands;
}
