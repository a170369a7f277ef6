// The key codes the game reads are the classic virtual-key codes of its
// first home; SDL's keys are mapped onto them here, without any display, so
// the mapping can be checked on its own.
#pragma once

#include <SDL_keycode.h>
#include <SDL_scancode.h>

namespace quorble::desktop {

// The code of a key going down, or 0 for a key the game has no code for.
// Letters follow the keyboard layout, the digit row and the keypad follow
// the key's place, and the keypad's meaning follows Num Lock.
int VirtualKeyCode(SDL_Keycode sym, SDL_Scancode scancode, bool numLock);

}  // namespace quorble::desktop
