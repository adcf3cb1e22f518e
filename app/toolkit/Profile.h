#pragma once

#include <QString>

/// What the program remembers from one run to the next: sections of entries in the user's INI file
/// "Brennick Korva/Tonewright.ini". Each call reads or writes the file's current state.
class Profile {
public:
    QString ReadString(const QString& section, const QString& entry, const QString& otherwise) const;
    void WriteString(const QString& section, const QString& entry, const QString& value);
    /// @return `otherwise` also for an entry that is no integer
    int ReadInt(const QString& section, const QString& entry, int otherwise) const;
    void WriteInt(const QString& section, const QString& entry, int value);
};

/// The one profile of the program.
Profile& GetProfile();
