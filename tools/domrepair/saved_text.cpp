#include "tools/domrepair/saved_text.h"

#include <algorithm>
#include <cctype>
#include <string>

namespace tsypr::domrepair
{
namespace
{

bool Rewind(IStream* stream) noexcept
{
    return stream->lpVtbl->Seek(stream, {}, STREAM_SEEK_SET, nullptr) == S_OK;
}

std::string ReadAll(IStream* stream)
{
    std::string text;
    char part[4096];
    ULONG read = 0;
    while (SUCCEEDED(stream->lpVtbl->Read(stream, part, sizeof(part), &read)) && read != 0)
    {
        text.append(part, read);
    }
    return text;
}

bool DeclaresUtf16(const std::string& text)
{
    std::string declaration = text.substr(0, text.find("?>"));
    std::transform(declaration.begin(),
                   declaration.end(),
                   declaration.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return declaration.starts_with("<?xml") &&
           declaration.find("utf-16", declaration.find("encoding")) != std::string::npos;
}

} // namespace

bool ReencodeAsDeclared(IStream* stream, std::vector<char>& bytes)
{
    const std::string text = ReadAll(stream);
    if (!Rewind(stream) || !DeclaresUtf16(text))
    {
        return false;
    }
    const int length = static_cast<int>(text.size());
    std::wstring wide(1 + text.size(), L'\xFEFF'); // never longer than in UTF-8
    const int units = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data() + 1, length);
    const auto* begin = reinterpret_cast<const char*>(wide.data());
    bytes.assign(begin, begin + static_cast<size_t>(1 + units) * sizeof(wchar_t));
    return true;
}

IStream* StreamOver(const std::vector<char>& bytes) noexcept
{
    IStream* stream = nullptr;
    if (FAILED(CreateStreamOnHGlobal(nullptr, TRUE, &stream)))
    {
        return nullptr;
    }
    if (FAILED(stream->lpVtbl->Write(stream, bytes.data(), static_cast<ULONG>(bytes.size()), nullptr)) ||
        !Rewind(stream))
    {
        stream->lpVtbl->Release(stream);
        return nullptr;
    }
    return stream;
}

HRESULT WriteTo(const VARIANT& destination, const std::vector<char>& bytes) noexcept
{
    const auto size = static_cast<ULONG>(bytes.size());
    if (destination.vt == VT_BSTR)
    {
        const HANDLE file =
            CreateFileW(destination.bstrVal, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file == INVALID_HANDLE_VALUE)
        {
            return HRESULT_FROM_WIN32(GetLastError());
        }
        DWORD written = 0;
        const bool done = WriteFile(file, bytes.data(), size, &written, nullptr) != FALSE && written == size;
        CloseHandle(file);
        return done ? S_OK : E_FAIL;
    }
    IStream* stream = nullptr;
    const HRESULT result = destination.punkVal->lpVtbl->QueryInterface(
        destination.punkVal, IID_IStream, reinterpret_cast<void**>(&stream));
    if (FAILED(result))
    {
        return result;
    }
    const HRESULT written = stream->lpVtbl->Write(stream, bytes.data(), size, nullptr);
    stream->lpVtbl->Release(stream);
    return written;
}

} // namespace tsypr::domrepair
