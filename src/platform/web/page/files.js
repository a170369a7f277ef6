// The data folder in IndexedDB, through emscripten's IDBFS. IndexedDB can't
// be awaited while a page goes away, so every change is first written to a
// journal in localStorage, which is synchronous; the journal is cleared
// once IndexedDB holds the change, and replayed at the next start if the
// page went before that.
const kJournal = 'quorble-journal:';
const kLockName = 'quorble-data-folder';

export const LockState = { held: 0, heldElsewhere: 1, none: 2 };

function bytesToText(bytes) {
  let text = '';
  for (let at = 0; at < bytes.length; at += 8192) {
    text += String.fromCharCode.apply(null, bytes.subarray(at, at + 8192));
  }
  return text;
}

function textToBytes(text) {
  const bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; i++) bytes[i] = text.charCodeAt(i);
  return bytes;
}

export class Files {
  constructor(folder) {
    this.folder = folder;
    this.serial = Date.now();
    this.syncing = Promise.resolve(true);
    this.lock = LockState.none;
  }

  // One tab at a time: the lock is held for as long as the page lives.
  async claim() {
    if (!navigator.locks) return LockState.none;
    try {
      this.lock = await new Promise((resolve) => {
        navigator.locks.request(kLockName, { ifAvailable: true }, (lock) => {
          resolve(lock ? LockState.held : LockState.heldElsewhere);
          return lock ? new Promise(() => {}) : undefined;
        });
      });
    } catch {
      this.lock = LockState.none;
    }
    return this.lock;
  }

  // Brings the folder in from IndexedDB and, for the tab that holds it,
  // what the journal kept of the last page's final changes.
  async mount(FS) {
    this.FS = FS;
    FS.mkdir(this.folder);
    FS.mount(FS.filesystems.IDBFS, {}, this.folder);
    await this.syncWith(true);
    if (this.lock === LockState.held && this.replay()) await this.sync();
  }

  syncWith(populate) {
    return new Promise((resolve) => this.FS.syncfs(populate, (error) => resolve(!error)));
  }

  entries() {
    const found = [];
    for (let i = 0; i < localStorage.length; i++) {
      const key = localStorage.key(i);
      if (!key.startsWith(kJournal)) continue;
      try {
        found.push({ key, path: key.slice(kJournal.length), ...JSON.parse(localStorage.getItem(key)) });
      } catch {
        localStorage.removeItem(key);
      }
    }
    return found.sort((a, b) => a.serial - b.serial);
  }

  replay() {
    const entries = this.entries();
    for (const entry of entries) {
      try {
        this.apply(entry);
      } catch (error) {
        console.warn(`quorble: the journal's ${entry.path} could not be restored`, error);
      }
    }
    return entries.length > 0;
  }

  apply({ path, data, folder }) {
    const FS = this.FS;
    const there = FS.analyzePath(path);
    if (folder) {
      if (!there.exists) FS.mkdirTree(path);
    } else if (data !== undefined) {
      FS.mkdirTree(path.slice(0, path.lastIndexOf('/')));
      FS.writeFile(path, textToBytes(data));
    } else if (there.exists) {
      if (FS.isDir(there.object.mode)) FS.rmdir(path);
      else FS.unlink(path);
    }
  }

  // Journals the entry at `path` as it now is: false when the journal
  // can't be written (storage full or refused).
  persist(path) {
    if (!path.startsWith(`${this.folder}/`)) return true;
    const FS = this.FS;
    const there = FS.analyzePath(path);
    const entry = { serial: ++this.serial };
    if (there.exists && FS.isDir(there.object.mode)) entry.folder = true;
    else if (there.exists) entry.data = bytesToText(FS.readFile(path));
    try {
      localStorage.setItem(kJournal + path, JSON.stringify(entry));
      return true;
    } catch {
      return false;
    }
  }

  // Copies the folder to IndexedDB, one sync after another; what the
  // journal held before the sync began is then safe and goes.
  sync() {
    const upTo = this.serial;
    this.syncing = this.syncing.then(async () => {
      const ok = await this.syncWith(false);
      if (ok) {
        for (const entry of this.entries()) {
          if (entry.serial <= upTo) localStorage.removeItem(entry.key);
        }
      }
      return ok;
    });
    return this.syncing;
  }
}
