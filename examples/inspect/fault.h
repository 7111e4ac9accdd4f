// The first place where bytes aren't BER.
#pragma once

#include <string>
#include <vector>

#include "../outline/elements.h"

namespace examples {

// The elements around a place, as a walk through BER meets them.
class Path {
public:
    bool IsEmpty() const { return levels_.empty(); }
    bool IsTooDeep() const { return levels_.size() == kDeepest; }
    bool IsIndefinite() const { return levels_.back().header.indefinite; }

    // Where the innermost one ends; in the indefinite form, where it ends at the latest.
    size_t End() const { return levels_.back().end; }

    void Enter(const Header& header, size_t end) { levels_.push_back({header, end}); }
    void Leave() { levels_.pop_back(); }

    // "SEQUENCE > [0] > SET"; of many the innermost ones.
    std::string Describe() const {
        static constexpr size_t kShown = 8;
        std::string text = levels_.size() > kShown ? "... > " : "";
        for (size_t i = levels_.size() - std::min(levels_.size(), kShown); i < levels_.size(); ++i) {
            text += DescribeTag(levels_[i].header);
            if (i + 1 < levels_.size()) text += " > ";
        }
        return text;
    }

private:
    static constexpr size_t kDeepest = 1000;

    struct Level {
        Header header;
        size_t end;
    };
    std::vector<Level> levels_;
};

// That of the element at the front, in words; nothing if there is none, or one too deep inside.
inline std::optional<std::string> DescribeFault(const Bytes& bytes) {
    Path path;
    size_t at = 0;
    const auto fault = [&](const std::string& text) {
        const std::string place = path.IsEmpty() ? "" : ", inside of " + path.Describe();
        return "at byte " + std::to_string(at) + place + ": " + text;
    };
    do {
        const size_t end = path.IsEmpty() ? bytes.size() : path.End();
        if (at == end && !path.IsEmpty() && path.IsIndefinite()) return fault("the end of the contents is missing");
        if (!path.IsEmpty() && path.IsIndefinite() && end - at >= 2 && bytes[at] == 0 && bytes[at + 1] == 0) {
            at += 2;
            path.Leave();
        } else if (const std::optional<Header> header = ReadHeader(bytes, at, end); !header) {
            return fault("no identifier and length that can be read");
        } else if (header->contentSize > end - at - header->size) {
            return fault(DescribeTag(*header) + " of " + std::to_string(header->contentSize) + " bytes, where " +
                         std::to_string(end - at - header->size) + " are left");
        } else if (header->indefinite && header->constructed == 0) {
            return fault(DescribeTag(*header) + " of indefinite length that isn't constructed");
        } else {
            at += header->size;
            if (header->constructed == 0) {
                at += header->contentSize;
            } else if (path.IsTooDeep()) {
                return std::nullopt;
            } else {
                path.Enter(*header, at + header->contentSize);
            }
        }
        while (!path.IsEmpty() && !path.IsIndefinite() && at == path.End()) path.Leave();
    } while (!path.IsEmpty());
    return std::nullopt;
}

}  // namespace examples
