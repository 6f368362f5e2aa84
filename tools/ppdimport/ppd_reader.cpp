#include "tools/ppdimport/ppd_reader.h"

#include "tools/ppdimport/text.h"

#include <cups/cups.h>
#include <cups/ppd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>

// CUPS marks its whole PPD interface as deprecated in favour of asking live queues; a PPD file on disk has no queue.
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"

namespace tsypr::ppdimport
{
namespace
{

struct PpdCloser
{
    void operator()(ppd_file_t* ppd) const
    {
        ppdClose(ppd);
    }
};

using PpdHandle = std::unique_ptr<ppd_file_t, PpdCloser>;

constexpr const char* kKeptAttributes[] = {"LandscapeOrientation", "DefaultResolution", "cupsMaxCopies"};

std::string Text(const char* text)
{
    return text != nullptr ? CleanText(text) : std::string();
}

void UseEnglishTexts()
{
    setenv("LC_ALL", "en_US.UTF-8", 1);
    setenv("LANG", "en_US.UTF-8", 1);
    unsetenv("LANGUAGE");
}

PpdHandle OpenPpd(const std::string& path)
{
    UseEnglishTexts();
    ppdSetConformance(PPD_CONFORM_RELAXED);
    errno = 0;
    PpdHandle ppd(ppdOpenFile(path.c_str()));
    if (ppd != nullptr)
    {
        return ppd;
    }
    const int systemError = errno;
    int line = 0;
    const ppd_status_t status = ppdLastError(&line);
    std::string message = path;
    if (line > 0)
    {
        message += ":" + std::to_string(line);
    }
    message += std::string(": ") + ppdErrorString(status);
    if (status == PPD_FILE_OPEN_ERROR && systemError != 0)
    {
        message += std::string(" (") + std::strerror(systemError) + ")";
    }
    throw InputError(message);
}

PpdOption ReadOption(ppd_file_t* ppd, const ppd_group_t& group, const ppd_option_t& source)
{
    PpdOption option;
    option.keyword = source.keyword;
    option.text = Text(source.text);
    option.group = Text(group.text);
    option.defaultChoice = source.defchoice;
    option.installable = std::strcmp(group.name, "InstallableOptions") == 0;
    const bool custom = ppdFindCustomOption(ppd, source.keyword) != nullptr;
    for (int i = 0; i < source.num_choices; ++i)
    {
        const ppd_choice_t& choice = source.choices[i];
        // CUPS adds a choice of this name wherever the file lets the user type a value.
        if (!custom || std::strcmp(choice.choice, "Custom") != 0)
        {
            option.choices.push_back({choice.choice, Text(choice.text)});
        }
    }
    return option;
}

void ReadGroup(ppd_file_t* ppd, const ppd_group_t& group, PpdModel& model)
{
    for (int i = 0; i < group.num_options; ++i)
    {
        model.options.push_back(ReadOption(ppd, group, group.options[i]));
    }
    for (int i = 0; i < group.num_subgroups; ++i)
    {
        ReadGroup(ppd, group.subgroups[i], model);
    }
}

void ReadSizes(const ppd_file_t& ppd, PpdModel& model)
{
    for (int i = 0; i < ppd.num_sizes; ++i)
    {
        const ppd_size_t& size = ppd.sizes[i];
        model.sizes.emplace(size.name, PpdSize{size.width, size.length});
    }
    if (ppd.variable_sizes != 0)
    {
        model.customSize =
            PpdCustomSize{{ppd.custom_min[0], ppd.custom_min[1]}, {ppd.custom_max[0], ppd.custom_max[1]}};
    }
}

void ReadAttributes(ppd_file_t* ppd, PpdModel& model)
{
    for (const char* name : kKeptAttributes)
    {
        const ppd_attr_t* attribute = ppdFindAttr(ppd, name, nullptr);
        if (attribute != nullptr)
        {
            model.attributes[name] = Text(attribute->value);
        }
    }
}

} // namespace

PpdModel ReadPpd(const std::string& path)
{
    const PpdHandle ppd = OpenPpd(path);
    PpdModel model;
    model.fileName = std::filesystem::path(path).filename().string();
    model.nickname = Text(ppd->nickname);
    model.modelName = Text(ppd->modelname);
    model.manufacturer = Text(ppd->manufacturer);
    model.language = Text(ppd->lang_version);
    model.colorDevice = ppd->color_device != 0;
    model.throughput = ppd->throughput > 0 ? ppd->throughput : 0;
    for (int i = 0; i < ppd->num_groups; ++i)
    {
        ReadGroup(ppd.get(), ppd->groups[i], model);
    }
    ReadSizes(*ppd, model);
    for (int i = 0; i < ppd->num_consts; ++i)
    {
        model.constraints.push_back({ppd->consts[i].option1, ppd->consts[i].option2});
    }
    ReadAttributes(ppd.get(), model);
    return model;
}

} // namespace tsypr::ppdimport
