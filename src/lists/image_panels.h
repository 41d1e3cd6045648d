#pragma once

#include <QString>

class ImageControl;

// True when the lower-cased path holds, anywhere, the extension of one of
// the image types the lists offer. It is a substring test: "a.bmp.txt" is an
// image to it, "a.jpeg" is not.
bool is_image_file(const QString& path);

// Fits a viewer to its frame, all sizes in twips: natural size first, each
// side that is over the frame trimmed to the frame plus 300 on its own, then
// the picture scaled to the frame less 300, first on the width (ViewMode 2),
// then on the height (ViewMode 3). A picture under both limits stays at its
// natural size in ViewMode 1.
void fit_to_frame(ImageControl& viewer, float frame_width, float frame_height);
