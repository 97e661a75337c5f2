// What GET /api/start says about this start of the program.

export interface FolderData {
  readonly name: string; // how the program's paths begin
  readonly path: string; // for people
}

export interface StartData {
  readonly version: string;
  readonly folders: readonly FolderData[]; // those that may be read
  readonly explore: boolean;
  readonly plugin: boolean;
  readonly bids: boolean;
  readonly ssh: boolean;
}
