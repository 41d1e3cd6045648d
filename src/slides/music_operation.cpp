#include "slides/music_operation.h"

#include "core/app_state.h"
#include "slides/music_device.h"
#include "slides/music_player.h"

void music_operation(AppState& app, int op) {
    if (app.music_player) {
        app.music_player->operation(op);
        return;
    }
    MusicDevice* device = app.music_device;
    if (!device) {
        return;
    }
    switch (op) {
        case 2:
            device->pause();
            break;
        case 21:
            device->resume();
            break;
        case 3:
            device->stop();
            device->close();
            break;
        case 6:
            device->set_speed(50);
            break;
        case 7:
            device->set_speed(150);
            break;
        case 15:
            device->set_speed(100);
            break;
        default:
            break;
    }
}
