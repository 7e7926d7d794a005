// The first request: it goes out before the rest of the page is there. Its answer tells the file to
// open, and what the page would ask first about it, where that is known already.
import { ask } from './api.js';

export const started = ask('api/start');
// Whoever waits for it tells what went wrong.
started.catch(() => {});
