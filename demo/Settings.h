#pragma once

#include <cstdint>
#include <ctime>
#include <stdexcept>
#include <string>
#include <vector>

namespace vantrel::demo {

/// How the phone behaves. README.md says what each setting does; the defaults stand here.
struct Settings {
    std::string serial = "demo-phone";
    std::string model = "Demo Phone";
    std::string version = "29.0.6";    ///< adb's own
    std::vector<std::string> wireless; ///< addresses at which a phone answers
    std::string state = "device";
    std::vector<std::string> cards;              ///< names of folders below /storage; with "gone" behind, not
    std::vector<std::string> phones;             ///< others that are plugged in: "SERIAL STATE MODEL"
    std::int64_t storageTotal = 118'082'764'800; ///< bytes
    std::int64_t storageUsed = 20'606'418'944;   ///< bytes
    double bandwidth = 0;                        ///< MB (10^6 bytes) per second of each copy; 0 is unlimited
    double delay = 0;                            ///< seconds before each answer
    std::vector<std::string> fail;               ///< phone paths that answer "Permission denied"
    std::int64_t unplugAfter = -1;               ///< bytes into a copy; negative is never
    std::int64_t fullAfter = -1;                 ///< bytes into a copy; negative is never
    bool corrupt = false;
    bool endless = false; ///< whether files that are copied from the phone go on behind their end
    bool hang = false;
    std::int64_t crash = 0; ///< signal number; 0 is none
    std::string chatter = "off";
    bool escapes = true;        ///< whether ls knows -b
    std::string standardOutput; ///< printed in place of the answer when hasStandardOutput
    bool hasStandardOutput = false;
    std::string standardError;
    std::int64_t exitStatus = -1; ///< negative leaves the command's own
    std::int64_t standardOutputNoise = 0;
    std::int64_t standardErrorNoise = 0;
    bool standardErrorProgress = true;
    bool log = false;
};

/// A setting that makes no sense; what() names it.
class SettingsError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where the settings come from: the environment, then the file beside the served folder, which wins. A
/// person or a test may write that file at any time.
class SettingsSource {
public:
    /// Reads the settings that hold for one command ("ls", "pull"…) to the phone with this serial. Throws
    /// SettingsError.
    SettingsSource(std::string root, std::string command, std::string serial);

    [[nodiscard]] const Settings &current() const { return m_current; }
    /// The served folder: the one that the settings lie beside, or another phone's.
    [[nodiscard]] const std::string &root() const { return m_servedRoot; }
    /// Reads the file again if it has changed. Throws SettingsError.
    void refresh();
    /// Writes into the file that the phone has been unplugged, and may be plugged in again without leaving a
    /// second time.
    void recordUnplugged();
    /// Appends a line to the file.
    void record(const std::string &line);

private:
    void load();

    std::string m_root;
    std::string m_command;
    std::string m_serial;
    std::string m_servedRoot;
    Settings m_current;
    std::int64_t m_size = -2; ///< of the file as last read; -1 when there was none, -2 before the first look
    timespec m_modified{};
};

/// One of the other phones.
struct OtherPhone {
    std::string serial;
    std::string state;
    std::string model;
};
/// The other phones, in the order in which they were first named; a later line changes one, and "none" takes
/// it away.
[[nodiscard]] std::vector<OtherPhone> otherPhones(const Settings &settings);

/// The names of the cards that are in the phone.
[[nodiscard]] std::vector<std::string> cardsOf(const Settings &settings);

/// The served folder: DEMO_PHONE_ROOT, or one of the user's data folder. Absolute, without a trailing slash.
[[nodiscard]] std::string servedFolder();

} // namespace vantrel::demo
