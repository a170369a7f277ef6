// The page's side of the web platform, written in JavaScript (page/
// bridge.js) and linked into the game as an emscripten library. Only the
// functions marked "sleeps" return to the browser while they wait; the
// build lists them, and only them, as the ones Asyncify may unwind.
#pragma once

#include <cstddef>

extern "C" {

// Sleeps until a key, a close request, the end of speech or of a sample,
// the end of a file sync, or `deadlineMs` on emscripten_get_now's scale.
// `forKey` tells tests that the game waits for a key alone.
void quorble_wait(double deadlineMs, int forKey);
// The next key pressed, 0 when none is waiting.
int quorble_next_key();
// 1 once the page is going away (closed, reloaded, navigated from); from
// then on nothing sleeps, so the game settles its files before the page
// is gone.
int quorble_closing();
int quorble_take_close();

void quorble_show(const char* caption);
void quorble_message(const char* text);
void quorble_beep();
void quorble_trace(const char* kind, const char* text);
// A face forced by a test, 0 when none is.
int quorble_forced_face();

// Speech: one queue for every voice object.
// Sleeps until the speech worker has tried each voice of the list, one a
// line; a bit for each one it loaded.
int quorble_speech_open(const char* voiceList);
int quorble_speech_voices();
// 1 when the player's own voices speak, 0 when the embedded engine does.
int quorble_speech_system();
// `voiceName` and `pitch` are the engine's, empty and 0 for the player's own voices,
// which take `voice` and `rate` instead. `gain` is the factor the text is heard at.
void quorble_speak(const char* text, const char* engineText, int voice, const char* voiceName,
                   int pitch, int wordsPerMinute, int rate, float gain);
void quorble_speech_purge();
int quorble_speaking();

// Samples: each an id in the mixer.
int quorble_sample_create(const float* frames, int frameCount, int channels, int rate);
void quorble_sample_release(int id);
void quorble_sample_position(int id, int frame);
void quorble_sample_gains(int id, float left, float right);
void quorble_sample_rate(int id, int hz);
void quorble_sample_play(int id, int looping);
void quorble_sample_stop(int id);
int quorble_sample_playing(int id);

// Files: the data folder lives in IndexedDB. A change is written at once
// to a journal in the page's synchronous storage (0 when that failed),
// then copied to IndexedDB by a sync that sleeps until it is done (0 when
// it failed).
int quorble_persist(const char* path);
int quorble_sync();
// The page's claim on the data folder, taken before the game started:
// 0 held, 1 held by another tab, 2 no claim can be made in this browser.
int quorble_lock_state();
// The game has ended.
void quorble_ended();
}
