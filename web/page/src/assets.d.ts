// Files that the build puts into the page.

declare module '*.wasm' {
  const bytes: Uint8Array<ArrayBuffer>;
  export default bytes;
}

/** The engine's name, version and signature. */
declare const ENGINE: { name: string, version: string, signature: string };
