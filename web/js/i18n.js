import en from './strings/en.js';
import zh from './strings/zh.js';

const kDictionaries = { en, zh };
const kStored = 'zelto.language';

let current = localStorage.getItem(kStored);
const chosen = current in kDictionaries;
if (!chosen) current = navigator.language?.toLowerCase().startsWith('zh') ? 'zh' : 'en';

export const language = () => current;

/** Whether the user has chosen a language on this device. */
export const languageChosen = () => chosen || localStorage.getItem(kStored) !== null;

/** Uses a language from now on; remembers it when the user chose it. */
export function useLanguage(name, remember) {
  if (!(name in kDictionaries)) return;
  current = name;
  document.documentElement.lang = name === 'zh' ? 'zh-Hans' : 'en';
  if (remember) localStorage.setItem(kStored, name);
}

export const hasText = (key) => key in kDictionaries[current];

/** A sentence by its key, with {name} replaced by the values' members. */
export function t(key, values) {
  const text = kDictionaries[current][key] ?? key;
  if (!values) return text;
  return text.replace(/\{(\w+)\}/g, (whole, name) => values[name] ?? whole);
}

const digits = (value, count) =>
  new Intl.NumberFormat(current === 'zh' ? 'zh-CN' : 'en', { maximumFractionDigits: count }).format(
    value,
  );

/** A number of bytes in a readable unit. */
export function bytes(value, suffix = '') {
  const units = ['B', 'KB', 'MB', 'GB', 'TB'];
  let size = Number(value);
  if (!Number.isFinite(size)) return String(value);
  let unit = 0;
  while (size >= 1000 && unit < units.length - 1) {
    size /= 1000;
    unit += 1;
  }
  return `${digits(size, size < 10 && unit > 0 ? 1 : 0)} ${units[unit]}${suffix}`;
}

/** A speed; the router's services count in kilobytes a second. A text with a unit of its own stays. */
export const speed = (value) =>
  /^[\d.]+$/.test(value) ? bytes(Number(value) * 1000, '/s') : value || '–';

/** "1:2:3:4" (days, hours, minutes, seconds) or "1-2:3:4" or "2:3:4" in words of two units. */
export function duration(text) {
  const parts = String(text).split(/[-:]/).map(Number);
  if (parts.some((part) => !Number.isFinite(part)) || parts.length < 3) return text || '–';
  while (parts.length < 4) parts.unshift(0);
  const words = parts.map((part, i) => [part, ['time.d', 'time.h', 'time.m', 'time.s'][i]]);
  const first = words.findIndex(([part]) => part > 0);
  if (first < 0) return t('time.s', { n: 0 });
  return words
    .slice(first, first + 2)
    .filter(([part], i) => i === 0 || part > 0)
    .map(([n, key]) => t(key, { n }))
    .join(' ');
}

/** "135" as the names of days. */
export function days(text) {
  const set = [...new Set(String(text).replace(/[^1-7]/g, ''))].sort().join('');
  if (set === '1234567') return t('days.all');
  if (set === '12345') return t('days.work');
  if (set === '67') return t('days.weekend');
  return [...set].map((day) => t(`day.${day}`)).join(language() === 'zh' ? '、' : ', ') || '–';
}
