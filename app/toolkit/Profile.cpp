#include "app/toolkit/Profile.h"

#include <QSettings>
#include <QVariant>

namespace {

QSettings openSettings() {
    return QSettings(QSettings::IniFormat, QSettings::UserScope, "Brennick Korva", "Tonewright");
}

QString keyOf(const QString& section, const QString& entry) { return section + '/' + entry; }

}  // namespace

QString Profile::ReadString(const QString& section, const QString& entry, const QString& otherwise) const {
    return openSettings().value(keyOf(section, entry), otherwise).toString();
}

void Profile::WriteString(const QString& section, const QString& entry, const QString& value) {
    openSettings().setValue(keyOf(section, entry), value);
}

int Profile::ReadInt(const QString& section, const QString& entry, int otherwise) const {
    bool isNumber = false;
    const int value = openSettings().value(keyOf(section, entry), otherwise).toInt(&isNumber);
    return isNumber ? value : otherwise;
}

void Profile::WriteInt(const QString& section, const QString& entry, int value) {
    openSettings().setValue(keyOf(section, entry), value);
}

Profile& GetProfile() {
    static Profile profile;
    return profile;
}
