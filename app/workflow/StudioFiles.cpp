#include "app/workflow/StudioFiles.h"

#include <QDir>

namespace studio_files {

QString DefaultPath(const QString& baseDir, const char* directory, const char* name) {
    const QChar separator = QDir::separator();
    return baseDir + separator + directory + separator + name;
}

int SaveFormatOfFilter(int filterIndex) {
    switch (filterIndex) {
        case 1:
            return 5;
        case 2:
            return 4;
        case 3:
            return 0;
        default:
            return filterIndex;
    }
}

}  // namespace studio_files
