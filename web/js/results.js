import { Refused, Rejected, Unreachable } from './api.js';
import { hasText, t } from './i18n.js';

const kUnknown = 6;

function refusal({ type, result }) {
  const own = `result.${type}.${result}`;
  if (hasText(own)) return t(own);
  const general = `result.${result}`;
  if (hasText(general)) return t(general);
  return t('result.other', { type, result });
}

function rejection({ status, word, retryAfter }) {
  if (status === 429) {
    const minutes = Math.ceil(retryAfter / 60);
    if (retryAfter === 0) return t('error.429');
    return retryAfter < 120
      ? t('error.429.seconds', { n: retryAfter })
      : t('error.429.minutes', { n: minutes });
  }
  const said = `error.${word}`;
  if (word && hasText(said)) return t(said);
  const known = `error.${status}`;
  return hasText(known) ? t(known) : t('error.other', { status });
}

/** What went wrong, in the user's words. */
export function sentence(error) {
  if (error instanceof Refused) return refusal(error);
  if (error instanceof Rejected) return rejection(error);
  if (error instanceof Unreachable) return t('error.unreachable');
  if (error?.name === 'AbortError') return t('error.stopped');
  console.error(error);
  return t('result.1');
}

/** Whether the user ended it on purpose, which is no error to show. */
export const givenUp = (error) => error?.name === 'AbortError';

/** Whether a command is not there on this router. */
export const missing = (error) =>
  (error instanceof Refused && error.result === kUnknown) ||
  (error instanceof Rejected && error.word === 'unknown_command');
