#ifndef TESSARY_SERVICE_PROFILE_H
#define TESSARY_SERVICE_PROFILE_H

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tsypr::service
{

// The numbers are those that the device mode uses for the same setting.
enum class Orientation : std::int16_t
{
    Portrait = 1,
    Landscape = 2
};

enum class ColorMode : std::int16_t
{
    Monochrome = 1,
    Color = 2
};

enum class DuplexMode : std::int16_t
{
    Simplex = 1,
    Vertical = 2,
    Horizontal = 3
};

enum class QualityLevel : std::int16_t
{
    Draft = -1,
    Low = -2,
    Medium = -3,
    High = -4
};

enum class LockedSetting : std::uint32_t
{
    Duplex = 0x1,
    Color = 0x2,
    CompressionLevel = 0x4
};

enum class Feature : std::uint32_t
{
    Nup = 0x01,
    PrintAsImage = 0x02,
    PopupPreDialog = 0x04,
    CompressionZlib = 0x08,
    Finishing = 0x10
};

// The paper number that stands for a size of the user's own.
inline constexpr std::uint16_t kUserPaper = 256;
// Bytes of a complete device mode before and after the area that a profile may put between them.
inline constexpr std::uint32_t kPublicDevModeSize = 220;
inline constexpr std::uint32_t kPrivateBlockSize = 1112;
// The whole device mode stays countable in 16 bits.
inline constexpr std::uint32_t kMaxLeadingExtra = 0xFFFF - kPublicDevModeSize - kPrivateBlockSize;

// All texts are UTF-8. Lengths are in tenths of a millimetre.
struct Paper
{
    std::uint16_t id = 0;
    std::string name;
    std::string keyword;
    std::int16_t width = 0;
    std::int16_t height = 0;
};

struct Bin
{
    std::uint16_t id = 0;
    std::string name;
    std::string keyword;
};

struct MediaType
{
    std::uint32_t id = 0;
    std::string name;
    std::string keyword;
};

struct Resolution
{
    std::int16_t x = 0;
    std::int16_t y = 0;
    bool operator==(const Resolution&) const = default;
};

struct CustomPaper
{
    std::int16_t minWidth = 0;
    std::int16_t minHeight = 0;
    std::int16_t maxWidth = 0;
    std::int16_t maxHeight = 0;
};

struct Nup
{
    std::vector<std::uint32_t> pagesPerSheet;
    std::vector<std::string> directions;
};

// The public settings a new device mode starts with. In a loaded profile an empty value means that the printer has no
// such setting; a quality level and a resolution are never both set.
struct PublicDefaults
{
    std::optional<Orientation> orientation;
    std::uint16_t paper = 0;
    std::optional<std::uint16_t> source;
    std::optional<std::uint32_t> mediaType;
    std::int16_t copies = 1;
    std::optional<bool> collate;
    std::optional<ColorMode> color;
    std::optional<DuplexMode> duplex;
    std::optional<Resolution> resolution;
    std::optional<QualityLevel> quality;
    std::optional<std::int16_t> scale;
    std::string formName;
    std::uint16_t leadingExtra = 0;
};

// The driver's own settings a new device mode starts with.
struct PrivateDefaults
{
    std::uint32_t compression = 0;
    std::uint32_t printTargetChoice = 0;
    bool printAsImage = false;
    bool showPreDialog = false;
    std::uint32_t pagesPerSheet = 1;
    std::string nupLayout;
    std::string staple;
    std::string punch;
    std::uint32_t locked = 0;
    std::uint32_t features = 0;
};

// One client printer.
struct Profile
{
    std::string name;
    std::string manufacturer;
    std::string model;
    std::string vendorNamespace;
    PublicDefaults deviceMode;
    PrivateDefaults privateSettings;
    std::vector<Paper> papers;
    std::optional<CustomPaper> customPaper;
    std::vector<Bin> bins;
    std::vector<MediaType> mediaTypes;
    std::vector<Resolution> resolutions;
    std::vector<QualityLevel> qualityLevels;
    std::vector<DuplexMode> duplex;
    bool color = false;
    std::uint16_t landscapeRotation = 90;
    std::int16_t maxCopies = 1;
    bool collation = false;
    std::int32_t pagesPerMinute = 0; // 0 when not known
    std::optional<Nup> nup;
    std::vector<std::string> staple;
    std::vector<std::string> punch;

    bool Has(Feature feature) const
    {
        return (privateSettings.features & static_cast<std::uint32_t>(feature)) != 0;
    }
    bool IsLocked(LockedSetting setting) const
    {
        return (privateSettings.locked & static_cast<std::uint32_t>(setting)) != 0;
    }
    const Paper* FindPaper(std::uint16_t id) const
    {
        for (const Paper& paper : papers)
        {
            if (paper.id == id)
            {
                return &paper;
            }
        }
        return nullptr;
    }
};

// Why a profile was refused. `field` is a path such as papers[3].width, empty when the file as a whole is at fault.
struct ProfileProblem
{
    std::string file;
    std::string field;
    std::string reason;
};

} // namespace tsypr::service

#endif
