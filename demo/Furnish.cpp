#include "Furnish.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace vantrel::demo {

namespace {

constexpr std::size_t kilobyte = 1000;
constexpr std::size_t megabyte = 1000 * kilobyte;

enum class Content {
    folder,
    text,    ///< readable
    picture, ///< a PNG of `size` pixels in width
    photo,   ///< the photo of that number
    noise,   ///< bytes that do not compress, behind the file type's first bytes
};

/// One entry of the phone. "%" in the path is replaced with the time, as cameras name their files.
struct Furniture {
    std::string_view path;
    Content content;
    std::size_t size; ///< bytes, a picture's width, or a photo's number
    double age;       ///< days
};

// Folders come after what they hold: writing into one would change its time.
constexpr std::array furniture{
    Furniture{"Alarms", Content::folder, 0, 702.4},
    Furniture{"Android/media", Content::folder, 0, 702.4},
    Furniture{"Android", Content::folder, 0, 702.4},
    Furniture{"DCIM/.thumbnails/.database_uuid", Content::text, 36, 640.1},
    Furniture{"DCIM/.thumbnails", Content::folder, 0, 12.5},
    Furniture{"DCIM/Camera/IMG_%.jpg", Content::photo, 1, 611.31},
    Furniture{"DCIM/Camera/IMG_%.jpg", Content::photo, 2, 402.17},
    Furniture{"DCIM/Camera/IMG_%.jpg", Content::photo, 3, 401.92},
    Furniture{"DCIM/Camera/IMG_%.jpg", Content::photo, 4, 233.55},
    Furniture{"DCIM/Camera/IMG_%.jpg", Content::photo, 5, 96.08},
    Furniture{"DCIM/Camera/IMG_%.jpg", Content::photo, 6, 12.44},
    Furniture{"DCIM/Camera/IMG_%.jpg", Content::photo, 7, 2.36},
    Furniture{"DCIM/Camera/VID_%.mp4", Content::noise, 3 * megabyte + 417'113, 2.35},
    Furniture{"DCIM/Camera", Content::folder, 0, 2.35},
    Furniture{"DCIM", Content::folder, 0, 640.1},
    Furniture{"Documents/Packing list.txt", Content::text, 1 * kilobyte + 212, 97.6},
    Furniture{"Documents/Reading notes.txt", Content::text, 18 * kilobyte + 40, 41.2},
    Furniture{"Documents/empty.txt", Content::text, 0, 303.9},
    Furniture{"Documents", Content::folder, 0, 41.2},
    Furniture{"Download/Boarding pass.pdf", Content::noise, 184 * kilobyte + 301, 97.1},
    Furniture{"Download/Manual (final) v2.pdf", Content::noise, 2 * megabyte + 96'400, 260.7},
    Furniture{"Download/holiday-photos.zip", Content::noise, 4 * megabyte + 3'511, 88.9},
    Furniture{"Download/weather.apk", Content::noise, 1 * megabyte + 830'020, 512.3},
    Furniture{"Download", Content::folder, 0, 88.9},
    Furniture{"Movies/Summer by the lake.mp4", Content::noise, 12 * megabyte + 204'733, 390.5},
    Furniture{"Movies", Content::folder, 0, 390.5},
    Furniture{"Music/Quiet Morning/01 Kettle.mp3", Content::noise, 912 * kilobyte + 77, 688.2},
    Furniture{"Music/Quiet Morning/02 Café at the corner.mp3", Content::noise, 1 * megabyte + 100'489, 688.2},
    Furniture{"Music/Quiet Morning", Content::folder, 0, 688.2},
    Furniture{"Music/.nomedia", Content::text, 0, 688.1},
    Furniture{"Music", Content::folder, 0, 688.1},
    Furniture{"Notifications", Content::folder, 0, 702.4},
    Furniture{"Pictures/Screenshots/Screenshot_%.png", Content::picture, 360, 71.7},
    Furniture{"Pictures/Screenshots/Screenshot_%.png", Content::picture, 360, 8.21},
    Furniture{"Pictures/Screenshots", Content::folder, 0, 8.21},
    Furniture{"Pictures/Wallpaper blue.png", Content::picture, 400, 455.0},
    Furniture{"Pictures", Content::folder, 0, 71.7},
    Furniture{"Podcasts", Content::folder, 0, 702.4},
    Furniture{"Recordings/Voice 001.m4a", Content::noise, 240 * kilobyte + 19, 150.4},
    Furniture{"Recordings/Voice 002.m4a", Content::noise, 96 * kilobyte + 803, 33.3},
    Furniture{"Recordings", Content::folder, 0, 33.3},
    Furniture{"Ringtones", Content::folder, 0, 702.4},
    Furniture{"Trip to Lisbon 🎉/It's sunny.txt", Content::text, 640, 395.2},
    Furniture{"Trip to Lisbon 🎉/tram 28.png", Content::picture, 420, 396.4},
    Furniture{"Trip to Lisbon 🎉", Content::folder, 0, 395.2},
    Furniture{"WhatsApp/Media/WhatsApp Audio", Content::folder, 0, 580.6},
    Furniture{"WhatsApp/Media/WhatsApp Images/IMG-0001.jpg", Content::photo, 8, 18.8},
    Furniture{"WhatsApp/Media/WhatsApp Images/IMG-0002.png", Content::picture, 260, 5.3},
    Furniture{"WhatsApp/Media/WhatsApp Images", Content::folder, 0, 5.3},
    Furniture{"WhatsApp/Media", Content::folder, 0, 580.6},
    Furniture{"WhatsApp", Content::folder, 0, 580.6},
    Furniture{".trashed", Content::folder, 0, 60.0},
};

/// The same bytes on every computer.
class Noise {
public:
    explicit Noise(std::uint64_t seed) : m_state(seed * 0x9E3779B97F4A7C15U + 1) {}
    std::uint64_t next() {
        m_state ^= m_state << 13;
        m_state ^= m_state >> 7;
        m_state ^= m_state << 17;
        return m_state;
    }

private:
    std::uint64_t m_state;
};

std::string noise(std::size_t size, std::uint64_t seed) {
    Noise source(seed);
    std::string bytes(size, '\0');
    for (std::size_t at = 0; at < size; at += sizeof(std::uint64_t)) {
        const std::uint64_t value = source.next();
        std::memcpy(&bytes[at], &value, std::min(sizeof value, size - at));
    }
    return bytes;
}

std::string text(std::size_t size) {
    static constexpr std::string_view sentence =
        "Two tickets, the blue umbrella, a map with the tram stops marked.\n";
    std::string result;
    while (result.size() < size)
        result += sentence;
    result.resize(size);
    return result;
}

void appendBigEndian(std::string &bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += static_cast<char>((value >> shift) & 0xFF);
}

std::uint32_t crc32(std::string_view bytes) {
    static const std::array<std::uint32_t, 256> table = [] {
        std::array<std::uint32_t, 256> values{};
        for (std::uint32_t i = 0; i < values.size(); ++i) {
            std::uint32_t value = i;
            for (int bit = 0; bit < 8; ++bit)
                value = (value >> 1) ^ ((value & 1) != 0 ? 0xEDB88320U : 0U);
            values[i] = value;
        }
        return values;
    }();
    std::uint32_t crc = 0xFFFFFFFFU;
    for (const char c : bytes)
        crc = table[(crc ^ static_cast<unsigned char>(c)) & 0xFF] ^ (crc >> 8);
    return ~crc;
}

std::uint32_t adler32(std::string_view bytes) {
    std::uint32_t a = 1;
    std::uint32_t b = 0;
    for (const char c : bytes) {
        a = (a + static_cast<unsigned char>(c)) % 65521;
        b = (b + a) % 65521;
    }
    return (b << 16) | a;
}

void appendChunk(std::string &png, const std::string &typeAndData) {
    appendBigEndian(png, static_cast<std::uint32_t>(typeAndData.size() - 4));
    png += typeAndData;
    appendBigEndian(png, crc32(typeAndData));
}

/// A PNG of a sky above hills, three by four, in 8-bit colour, its rows stored uncompressed.
std::string picture(std::size_t width, std::uint64_t seed) {
    const std::size_t height = width * 3 / 4;
    Noise source(seed);
    const auto hue = static_cast<std::size_t>(source.next() % 90);
    const auto slope = static_cast<std::size_t>(source.next() % 5 + 3);
    std::string rows;
    rows.reserve((width * 3 + 1) * height);
    for (std::size_t y = 0; y < height; ++y) {
        rows += '\0'; // no filter
        for (std::size_t x = 0; x < width; ++x) {
            const std::size_t ridge = height / 2 + (x > width / 2 ? x - width / 2 : width / 2 - x) / slope;
            const std::size_t grain = source.next() & 7;
            const std::size_t light = y * 100 / height + grain;
            if (y < ridge)
                rows += {static_cast<char>(90 + hue + light), static_cast<char>(140 + light),
                         static_cast<char>(240)};
            else
                rows += {static_cast<char>(30 + hue), static_cast<char>(160 - light),
                         static_cast<char>(60 + grain)};
        }
    }

    std::string data = "IDAT\x78\x01";
    constexpr std::size_t largestStoredBlock = 65535;
    for (std::size_t at = 0; at < rows.size(); at += largestStoredBlock) {
        const std::size_t length = std::min(largestStoredBlock, rows.size() - at);
        data += at + length == rows.size() ? '\x01' : '\0';
        for (const std::size_t value : {length, ~length})
            data += {static_cast<char>(value & 0xFF), static_cast<char>((value >> 8) & 0xFF)};
        data.append(rows, at, length);
    }
    appendBigEndian(data, adler32(rows));

    std::string header = "IHDR";
    appendBigEndian(header, static_cast<std::uint32_t>(width));
    appendBigEndian(header, static_cast<std::uint32_t>(height));
    header += {8, 2, 0, 0, 0}; // bits per channel, RGB, and the only methods there are
    std::string png = "\x89PNG\r\n\x1a\n";
    appendChunk(png, header);
    appendChunk(png, data);
    appendChunk(png, "IEND");
    return png;
}

/// As the build has made it.
std::string photo(std::size_t number) {
    const std::string path = VANTREL_DEMO_PHOTOS "/" + std::to_string(number) + ".jpg";
    std::ifstream file(path, std::ios::binary);
    std::string bytes(std::istreambuf_iterator<char>(file), {});
    if (bytes.empty())
        throw std::runtime_error("cannot read " + path);
    return bytes;
}

/// What a file of this name begins with, so that it is taken for what it says.
std::string_view firstBytes(std::string_view path) {
    using namespace std::string_view_literals;
    const std::string_view suffix = path.substr(path.rfind('.'));
    if (suffix == ".pdf")
        return "%PDF-1.4\n"sv;
    if (suffix == ".zip" || suffix == ".apk")
        return "PK\x03\x04"sv;
    if (suffix == ".mp3")
        return "ID3\x03\0"sv;
    return "\0\0\0\x18"
           "ftypmp42"sv;
}

void setTime(const std::string &path, std::time_t time) {
    const std::array<timespec, 2> times{timespec{time, 0}, timespec{time, 0}};
    ::utimensat(AT_FDCWD, path.c_str(), times.data(), 0);
}

void place(const std::string &root, const Furniture &piece, std::time_t now, std::uint64_t seed) {
    const std::time_t time = now - static_cast<std::time_t>(piece.age * 86400);
    std::string path = root + "/" + std::string(piece.path);
    if (const std::size_t at = path.rfind('%'); at != std::string::npos && at > root.size()) {
        std::array<char, 32> stamp{};
        std::tm local{};
        ::localtime_r(&time, &local);
        const std::size_t length = std::strftime(stamp.data(), stamp.size(), "%Y%m%d_%H%M%S", &local);
        path.replace(at, 1, stamp.data(), length);
    }
    if (piece.content == Content::folder) {
        std::filesystem::create_directories(path);
        setTime(path, time);
        return;
    }
    std::string bytes;
    if (piece.content == Content::text) {
        bytes = text(piece.size);
    } else if (piece.content == Content::photo) {
        bytes = photo(piece.size);
    } else if (piece.content == Content::picture) {
        bytes = picture(piece.size, seed);
    } else {
        bytes = noise(piece.size, seed);
        const std::string_view first = firstBytes(piece.path);
        bytes.replace(0, first.size(), first);
    }
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
        throw std::runtime_error("cannot write " + path);
    setTime(path, time);
}

} // namespace

void furnish(const std::string &root) {
    struct stat status {};
    if (::stat(root.c_str(), &status) == 0)
        return;
    const std::string unfinished = root + ".new-" + std::to_string(::getpid());
    std::filesystem::create_directories(unfinished);
    const std::time_t now = std::time(nullptr);
    std::uint64_t seed = 1;
    for (const Furniture &piece : furniture)
        place(unfinished, piece, now, seed++);
    // Another process may have been quicker; its phone is as good.
    if (std::rename(unfinished.c_str(), root.c_str()) != 0) {
        const int error = errno;
        std::filesystem::remove_all(unfinished);
        if (error != ENOTEMPTY && error != EEXIST)
            throw std::runtime_error("cannot make " + root + ": " + std::strerror(error));
    }
}

} // namespace vantrel::demo
