#include "tests/importer/test_support.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace tsypr::ppdimport
{

ScratchFolder::ScratchFolder()
{
    std::string name = (std::filesystem::temp_directory_path() / "ppdimport-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
    {
        throw std::runtime_error("no scratch folder " + name);
    }
    m_path = name;
}

ScratchFolder::~ScratchFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string ScratchFolder::Path(std::string_view name) const
{
    return (m_path / name).string();
}

std::string ScratchFolder::Write(std::string_view name, std::string_view content) const
{
    std::string path = Path(name);
    std::ofstream file(path, std::ios::binary);
    file << content;
    if (!file.flush())
    {
        throw std::runtime_error("cannot write " + path);
    }
    return path;
}

std::vector<std::string> ScratchFolder::Entries() const
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(m_path))
    {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string ReadAll(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string SmallPpd(std::string_view more, std::string_view encoding)
{
    std::string text = "*PPD-Adobe: \"4.3\"\n"
                       "*FormatVersion: \"4.3\"\n"
                       "*FileVersion: \"1.0\"\n"
                       "*LanguageVersion: English\n"
                       "*LanguageEncoding: ";
    text += encoding;
    text += "\n"
            "*PCFileName: \"TEST.PPD\"\n"
            "*Manufacturer: \"Maker\"\n"
            "*ModelName: \"Model 1\"\n"
            "*NickName: \"Maker Model 1 PS\"\n"
            "*ShortNickName: \"Maker Model 1 PS\"\n"
            "*Product: \"(Model 1)\"\n"
            "*PSVersion: \"(3010.000) 0\"\n"
            "*ColorDevice: True\n"
            "*Throughput: \"30\"\n"
            "*LandscapeOrientation: Minus90\n"
            "*OpenUI *PageSize: PickOne\n"
            "*DefaultPageSize: A4\n"
            "*PageSize Letter/US Letter: \"\"\n"
            "*PageSize A4/A4: \"\"\n"
            "*CloseUI: *PageSize\n"
            "*DefaultPaperDimension: A4\n"
            "*PaperDimension Letter: \"612 792\"\n"
            "*PaperDimension A4: \"595 842\"\n";
    text += more;
    return text;
}

PpdOption MakeOption(const std::string& keyword, const std::vector<std::string>& choices)
{
    PpdOption option;
    option.keyword = keyword;
    option.text = keyword;
    for (const std::string& choice : choices)
    {
        const std::size_t slash = choice.find('/');
        const std::string name = choice.substr(0, slash);
        option.choices.push_back({name, slash == std::string::npos ? name : choice.substr(slash + 1)});
    }
    option.defaultChoice = option.choices.front().name;
    return option;
}

PpdModel MakeModel(std::vector<PpdOption> options)
{
    PpdModel model;
    model.fileName = "model.ppd";
    model.modelName = "Model";
    model.manufacturer = "Maker";
    model.language = "English";
    model.colorDevice = true;
    model.options.push_back(MakeOption("PageSize", {"A4"}));
    model.sizes["A4"] = {595, 842};
    model.options.insert(model.options.end(), options.begin(), options.end());
    return model;
}

void AddPageSize(PpdModel& model, const std::string& name, double width, double length)
{
    model.options.front().choices.push_back({name, name});
    model.sizes[name] = {width, length};
}

PrinterProfile Import(const PpdModel& model)
{
    return ImportPrinter(model, {}).profile;
}

std::string ImportReportOf(const PpdModel& model)
{
    return ImportPrinter(model, {}).report;
}

} // namespace tsypr::ppdimport
