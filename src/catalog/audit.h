#pragma once

#include "core/context.h"

#include <QList>
#include <QPair>
#include <QString>
#include <QStringList>

// The catalog audit: how complete the `filenames` table is, and the eight
// maintenance commands that remove rows or fill in titles.

// The commands, in the order the Audit tab lists them.
const QStringList& audit_commands();

// The five counts, in the tab's order, as (label, number as text). Uses the
// shared recordset; a failure is not caught.
QList<QPair<QString, QString>> audit_counts(Context& ctx);

// Runs the command of that exact text after asking whether to. Every failure
// within is passed over; the result, if any row was counted, is told in one
// message. Only "Remove files that do not exist" touches the disk, and only
// for a file that could not be read.
void run_audit_command(Context& ctx, const QString& command);
