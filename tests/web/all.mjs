import { after } from 'node:test';
import { closeBrowser } from './support.mjs';

await import('./flows.mjs');
await import('./safety.mjs');
await import('./pages.mjs');
after(closeBrowser);
