#include "core/catalog_location.h"

#include "core/file_helpers.h"

#include <QUrl>

bool is_server_catalog(const QString& location) {
    return location.startsWith(QLatin1String("postgresql://"), Qt::CaseInsensitive) ||
           location.startsWith(QLatin1String("postgres://"), Qt::CaseInsensitive);
}

bool catalog_exists(QString& location) {
    if (is_server_catalog(location.trimmed())) {
        location = location.trimmed();
        return true;
    }
    return file_exists(location);
}

QString location_without_password(const QString& location) {
    if (!is_server_catalog(location)) {
        return location;
    }
    QUrl url(location);
    if (url.password().isEmpty()) {
        return location;
    }
    url.setPassword(QString());
    return url.toString();
}
