import { after, describe } from 'node:test';
import { closeBrowser } from './support.mjs';

// Two at once: looking around for networks is mostly waiting.
describe('the web page', { concurrency: 2 }, async () => {
  after(closeBrowser);
  await import('./pages.mjs');
  await import('./flows.mjs');
  await import('./safety.mjs');
});
