// The game's key codes from the browser's key events. The browser's keyCode
// already holds the game's codes (the classic virtual keys); Firefox alone
// numbers three punctuation keys its own way.
const kFirefoxCodes = new Map([[59, 186], [61, 187], [173, 189]]);
// Held with one of these, a key is the browser's or the system's
// (Ctrl+W, Alt+Tab): the game hears it, the browser still acts on it.
const kModifierKeys = new Set(['Control', 'Alt', 'Meta', 'Shift', 'AltGraph', 'OS']);

export function gameKeyCode(event) {
  const code = event.keyCode || 0;
  return kFirefoxCodes.get(code) ?? (code > 0 && code < 255 ? code : 0);
}

// Every key the game uses is kept from the browser: F5 must not reload,
// F1 must not open help, F12 must not open the developer tools, Tab must
// not leave the game. Shortcuts made with Ctrl, Alt or Meta are left alone.
export function keptFromBrowser(event) {
  if (kModifierKeys.has(event.key)) return true;
  return !(event.ctrlKey || event.altKey || event.metaKey);
}
