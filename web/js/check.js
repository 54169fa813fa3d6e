// Checks of what the user typed, before anything is sent. Each gives null, or the key of what is
// wrong and the values of its sentence.

const fault = (key, values) => ({ key, values });

const octets = (text) => {
  const match = /^(\d{1,3})\.(\d{1,3})\.(\d{1,3})\.(\d{1,3})$/.exec(text);
  const parts = match?.slice(1).map(Number);
  return parts?.every((part) => part < 256) ? parts : null;
};

/** A dotted address as a number, or null. */
export const addressNumber = (text) =>
  octets(text)?.reduce((sum, part) => sum * 256 + part, 0) ?? null;

export const utf8Length = (text) => new TextEncoder().encode(text).length;

export const address = (text) => {
  const parts = octets(text);
  const host = parts && parts[0] > 0 && parts[0] !== 127 && parts[0] < 224;
  return host ? null : fault('check.address');
};

export const netmask = (text) => {
  const value = addressNumber(text);
  if (value === null || value === 0) return fault('check.netmask');
  return /^1+0*$/.test(value.toString(2).padStart(32, '0')) ? null : fault('check.netmask');
};

export const mac = (text) => {
  if (!/^([0-9a-f]{2}:){5}[0-9a-f]{2}$/i.test(text)) return fault('check.mac');
  const multicast = parseInt(text.slice(0, 2), 16) % 2 === 1;
  return multicast || /^(00:){5}00$/.test(text) ? fault('check.mac') : null;
};

export const host = (text) =>
  /^[A-Za-z0-9]([A-Za-z0-9.-]{0,125}[A-Za-z0-9])?$/.test(text) ? null : fault('check.host');

export const range = (low, high) => (text) => {
  const value = Number(text);
  const whole = /^\d+$/.test(text) && value >= low && value <= high;
  return whole ? null : fault('check.range', { low, high });
};

export const port = range(1, 65535);

/** A port, or two joined by "-". */
export const ports = (text) => {
  const [low, high, more] = text.split('-');
  const bad =
    more !== undefined ||
    port(low) ||
    (high !== undefined && (port(high) || Number(high) < Number(low)));
  return bad ? fault('check.ports') : null;
};

export const bytesAtMost = (limit) => (text) =>
  utf8Length(text) <= limit ? null : fault('check.long', { n: limit });

/** A network's name: 1 to 32 bytes on the air. */
export const ssid = (text) => {
  const size = utf8Length(text);
  return size >= 1 && size <= 32 ? null : fault('check.ssid');
};

/** A passphrase of WPA: 8 to 63 printable ASCII characters. */
export const passphrase = (text) =>
  /^[\x20-\x7e]{8,63}$/.test(text) ? null : fault('check.passphrase');

/** A text that lists keep as one word. */
export const word = (limit) => (text) =>
  /\s/.test(text) ? fault('check.word') : bytesAtMost(limit)(text);

export const url = (text) => {
  try {
    return /^https?:$/.test(new URL(text).protocol) ? null : fault('check.url');
  } catch {
    return fault('check.url');
  }
};

/** Whether two addresses are in one network of a mask. */
export function sameNetwork(one, other, mask) {
  const [a, b, m] = [one, other, mask].map(addressNumber);
  if (a === null || b === null || m === null) return false;
  const size = 2 ** 32 - m;
  return Math.floor(a / size) === Math.floor(b / size);
}
