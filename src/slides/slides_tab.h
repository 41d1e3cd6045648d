#pragma once

#include "ui/tab_page.h"
#include "slides/music_player.h"

#include <memory>

class QtMusicDevice;
class SlideShowPlayer;

namespace Ui {
class SlidesTab;
}

// The Slides tab: edits one saved slide show at a time (its images, music,
// delay and loop), plays its music and runs it in the preview window. It owns
// the application's music device and player while it lives.
class SlidesTab : public TabPage, public MusicControls {
    Q_OBJECT
public:
    explicit SlidesTab(Workbench& wb, QWidget* parent = nullptr);
    ~SlidesTab() override;

    // The image rows of the main list, then the delay, loop and show titles
    // from the settings file.
    void enter() override;

    // MusicControls: o_slides_music and b_slides_play.
    QStringList music_rows() const override;
    int selected_music_row() const override;
    void select_music_row(int row) override;
    void set_play_caption(const QString& caption) override;

    MusicPlayer& music() { return *music_; }
    // The show that runs now, null between shows.
    SlideShowPlayer* show_player() const { return show_; }

private:
    void save_show();
    void delete_show();
    void select_show();
    void add_music();
    void delete_music();
    void play_clicked();
    void start_show();

    std::unique_ptr<Ui::SlidesTab> ui_;
    AppState& app_state_;
    std::unique_ptr<QtMusicDevice> device_;
    std::unique_ptr<MusicPlayer> music_;
    SlideShowPlayer* show_ = nullptr;
};
