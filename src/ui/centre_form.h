#pragma once

class QWidget;

// Places a form in the middle of its screen: top = (screen height / 2) -
// (form height / 2), left likewise. The pointer is busy while it runs and the
// normal arrow afterwards, whatever it was before, as every dialog opens with
// the arrow. Every dialog calls it before it shows.
void centre_form(QWidget* form);
