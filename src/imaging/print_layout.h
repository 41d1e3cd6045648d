#pragma once

#include <QString>

// The arithmetic of a print job: where the pictures of a page stand, which
// way a picture must turn to suit its cell, and how far it is zoomed. All
// lengths are printer pixels: the margins are fixed numbers of them, so they
// shrink on paper as the printer's resolution rises.

// The cells of one page: the column loop runs x from x0 to x1 by xs inside
// the row loop of y from y0 to y1 by ys; each cell is cw by ch with its top
// left corner at (x, y).
struct PageGrid {
    QString style;  // "vertical" or "horizontal": the wanted shape of a cell
    int per_page = 0;
    double x0 = 0, x1 = 0, xs = 0;
    double y0 = 0, y1 = 0, ys = 0;
    double cw = 0, ch = 0;
};

// The grid of a layout text ("1 image/page" ... "8 images/page") in an
// orientation, on a page of sw by sh printer pixels. Any other layout text
// gives a grid of zeros.
PageGrid page_grid(const QString& layout, bool landscape, double sw, double sh);

// A picture is turned a quarter when its shape goes against the cell's
// style: wider than high in a "vertical" cell, higher than wide in a
// "horizontal" one. A square picture never turns.
bool wrong_shape(const QString& style, int image_width, int image_height);

// The zoom of one axis: from `start` down to 0.2 in steps of 0.05, the first
// factor that makes the side shorter than the cell's. When none does, what is
// kept is the last product tried (side times 0.2), not a factor.
double axis_zoom(int side, double cell, double start);
// The zoom a picture is drawn at: the smaller of the two axes' zooms, with
// start 100 when the maximum size is wanted and 1 otherwise.
double print_zoom(int image_width, int image_height, double cw, double ch, bool use_max_size);

// The printer's quality number of a quality word: Draft -1, Low -2,
// Medium -3, High -4; 0 for anything else, which leaves the quality as is.
int print_quality_number(const QString& word);
