// One run of the program, as of a native process: arguments, input and files go in, the exit code and what it wrote come
// out. Its folder is in memory, and nothing of one run is left for the next.
import { ConsoleStdout, File, OpenFile, PreopenDirectory, WASI } from '@bjorn3/browser_wasi_shim';

export interface Run {
  arguments: string[];
  input: string; // all of standard input
  files: Record<string, string>; // in the program's folder, text by name
}

export interface Outcome {
  code: number;
  output: string;
  complaint: string; // standard error
  files: Record<string, string>;
}

/** What a worker is asked; its answer is an Outcome, or a string when the program could not run to its end. */
export interface Task {
  module: WebAssembly.Module;
  run: Run;
}

/** Collects what is written to a stream. */
class Written {
  private readonly decoder = new TextDecoder();
  private text = '';
  readonly stream = new ConsoleStdout((bytes) => (this.text += this.decoder.decode(bytes, { stream: true })));

  toString(): string {
    return this.text;
  }
}

export async function execute({ module, run }: Task): Promise<Outcome> {
  const encoder = new TextEncoder();
  const files = Object.entries(run.files).map(([name, text]) => [name, new File(encoder.encode(text))] as const);
  const folder = new PreopenDirectory('.', new Map(files));
  const output = new Written();
  const complaint = new Written();
  const input = new OpenFile(new File(encoder.encode(run.input)));
  const wasi = new WASI(['zorvane', ...run.arguments], [], [input, output.stream, complaint.stream, folder], {
    debug: false,
  });
  const instance = await WebAssembly.instantiate(module, { wasi_snapshot_preview1: wasi.wasiImport });
  const code = wasi.start(instance as Parameters<WASI['start']>[0]);
  const left: Record<string, string> = {};
  for (const [name, inode] of folder.dir.contents) {
    if (inode instanceof File) left[name] = new TextDecoder().decode(inode.data);
  }
  return { code, output: `${output}`, complaint: `${complaint}`, files: left };
}
