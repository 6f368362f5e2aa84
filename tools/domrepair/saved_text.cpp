#include "tools/domrepair/saved_text.h"

#include <algorithm>
#include <cctype>

namespace tsypr::domrepair
{
namespace
{

bool DeclaresUtf16(const std::string& text)
{
    std::string declaration = text.substr(0, text.find("?>"));
    std::transform(declaration.begin(),
                   declaration.end(),
                   declaration.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    const size_t encoding = declaration.find("encoding");
    return declaration.starts_with("<?xml") && encoding != std::string::npos &&
           declaration.find("utf-16", encoding) != std::string::npos;
}

HRESULT WriteFileAt(const wchar_t* path, const std::string& bytes) noexcept
{
    const HANDLE file = CreateFileW(path, GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        return HRESULT_FROM_WIN32(GetLastError());
    }
    const auto size = static_cast<DWORD>(bytes.size());
    DWORD written = 0;
    const bool done = WriteFile(file, bytes.data(), size, &written, nullptr) != FALSE && written == size;
    CloseHandle(file);
    return done ? S_OK : E_FAIL;
}

} // namespace

IStream* NewStream() noexcept
{
    IStream* stream = nullptr;
    return SUCCEEDED(CreateStreamOnHGlobal(nullptr, TRUE, &stream)) ? stream : nullptr;
}

bool Rewind(IStream* stream) noexcept
{
    return stream->lpVtbl->Seek(stream, {}, STREAM_SEEK_SET, nullptr) == S_OK;
}

std::string ReadRest(IStream* stream)
{
    std::string text;
    STATSTG status = {};
    stream->lpVtbl->Stat(stream, &status, STATFLAG_NONAME); // only to have the memory at once
    text.reserve(status.cbSize.LowPart);
    char part[65536];
    ULONG read = 0;
    while (SUCCEEDED(stream->lpVtbl->Read(stream, part, sizeof(part), &read)) && read != 0)
    {
        text.append(part, read);
    }
    return text;
}

std::string EncodedAsDeclared(std::string text)
{
    if (!DeclaresUtf16(text))
    {
        return text;
    }
    const int length = static_cast<int>(text.size());
    std::wstring wide(1 + text.size(), L'\xFEFF'); // never more units than there are bytes in UTF-8
    const int units = MultiByteToWideChar(CP_UTF8, 0, text.data(), length, wide.data() + 1, length);
    return {reinterpret_cast<const char*>(wide.data()), static_cast<size_t>(1 + units) * sizeof(wchar_t)};
}

HRESULT WriteTo(const VARIANT& destination, const std::string& bytes) noexcept
{
    if (destination.vt == VT_BSTR)
    {
        return WriteFileAt(destination.bstrVal, bytes);
    }
    IStream* stream = nullptr;
    HRESULT result = destination.punkVal->lpVtbl->QueryInterface(
        destination.punkVal, IID_IStream, reinterpret_cast<void**>(&stream));
    if (SUCCEEDED(result))
    {
        result = stream->lpVtbl->Write(stream, bytes.data(), static_cast<ULONG>(bytes.size()), nullptr);
        stream->lpVtbl->Release(stream);
    }
    return result;
}

} // namespace tsypr::domrepair
