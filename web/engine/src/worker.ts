// What runs in a worker: one task after the other, each answered before the next is sent.
import { listen } from '#port';
import { execute } from './run.js';

listen((task) => execute(task).catch((error: unknown) => String(error)));
