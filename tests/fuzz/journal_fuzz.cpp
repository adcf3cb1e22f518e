#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "acquisition/zvn/color_journal.h"
#include "tests/fuzz/fuzz_file.h"

// What is kept of a transfer to a camera: a record that can be read is the same once it was kept and read again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = startLibrary();
    static_cast<void>(started);
    static const struct Folder {
        Folder() : path((std::filesystem::temp_directory_path() / "journal.XXXXXX").string()) {
            if (!mkdtemp(path.data())) std::abort();
        }
        ~Folder() { std::filesystem::remove_all(path); }
        std::string path;
    } folder;
    std::ofstream(folder.path + "/camera.journal", std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    ZvnColorJournal journal(folder.path, "camera");
    std::string wrong;
    const auto record = journal.Read(wrong);
    if (record.has_value() != wrong.empty()) std::abort();
    if (!record) return 0;
    if (!journal.Keep(*record).empty()) std::abort();
    const auto again = journal.Read(wrong);
    if (!again || again->earlier != record->earlier || again->next != record->next || again->wasOn != record->wasOn) {
        std::abort();
    }
    return 0;
}
