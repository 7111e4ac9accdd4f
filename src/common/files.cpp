#include "common/files.h"

#include "common/platform.h"
#include "engine/failure.h"

namespace tlvforge {
namespace {

constexpr uint32_t kLargestFile = 300000000;

class File {
public:
    File(const char* path, const char* mode) : stream_(fopen(path, mode)) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() {
        if (stream_ != nullptr) fclose(stream_);
    }

    FILE* Stream() const { return stream_; }
    explicit operator bool() const { return stream_ != nullptr; }

    // What the stream still buffers is written only now. False when that fails.
    bool Close() {
        FILE* stream = stream_;
        stream_ = nullptr;
        return fclose(stream) == 0;
    }

private:
    FILE* stream_;
};

// Leaves the stream at its start. The low 32 bits of a size count.
bool MeasureFile(const File& file, uint32_t* size) {
    if (!SeekFile(file.Stream(), 0, SEEK_END)) return false;
    const int64_t end = TellFile(file.Stream());
    if (end < 0 || !SeekFile(file.Stream(), 0, SEEK_SET)) return false;
    *size = static_cast<uint32_t>(end);
    return true;
}

}  // namespace

Status ReadWholeFile(const char* path, Block* bytes, uint32_t* length) {
    if (AnyNull(path, bytes, length)) return Fail(StatusBadArgument);
    const File file(path, "rb");
    if (!file) return Fail(StatusFileOpenFailed);
    uint32_t size = 0;
    if (!MeasureFile(file, &size)) return Fail(StatusFileSeekFailed);
    if (size > kLargestFile) return StatusOk;
    *bytes->Slot() = static_cast<uint8_t*>(Allocate(size));
    if (!*bytes) return Fail(StatusOutOfMemory);
    if (fread(bytes->Bytes(), 1, size, file.Stream()) != size) return Fail(StatusFileReadShort);
    *length = size;
    return StatusOk;
}

Status WriteWholeFile(const char* path, const uint8_t* bytes, uint32_t length) {
    if (AnyNull(path, bytes)) return Fail(StatusBadArgument);
    File file(path, "wb");
    if (!file) return Fail(StatusFileOpenFailed);
    const bool written = fwrite(bytes, 1, length, file.Stream()) == length;
    return file.Close() && written ? StatusOk : Fail(StatusFileWriteShort);
}

}  // namespace tlvforge
