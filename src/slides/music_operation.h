#pragma once

struct AppState;

// The music operations that the rest of the application sends to the one
// music device: 1 next track, 2 pause, 3 stop (which also closes the device),
// 6 slow, 7 fast, 8 mute toggle, 15 normal speed, 21 resume. With the Slides
// tab's music player in place they run through it (its list, its timer and
// its button); with only a device they act on the device; with neither there
// is nothing to act on. Every failure is silent.
void music_operation(AppState& app, int op);
