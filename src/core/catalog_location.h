#pragma once

#include <QString>

// Where a catalog lives: a file path, or the connection URL of a catalog on a
// database server, "postgresql://user@host:port/dbname".

// True for a server URL ("postgresql://" or "postgres://", any case).
bool is_server_catalog(const QString& location);

// A catalog that can be tried: an existing file, or any server URL (whether
// the server answers is known only by connecting). Trims blanks from
// `location` in place, as file_exists() does.
bool catalog_exists(QString& location);

// The location as it may be written to the settings file or shown: a server
// URL loses its password, which comes from the URL typed or from the user's
// password file, never from the settings.
QString location_without_password(const QString& location);
