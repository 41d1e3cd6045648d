#pragma once

struct AppState;

// The music operations that other parts of the application send to the one
// music device: 2 pause, 21 resume, 3 stop (which also closes the device),
// 6 slow, 7 fast, 15 normal speed. With no device there is nothing to act on,
// and every failure is silent.
void music_operation(AppState& app, int op);
