// Works the input box as a user does, from another thread.
#ifndef TESSARY_TESTS_WATERMARK_INPUT_BOX_DRIVER_H
#define TESSARY_TESTS_WATERMARK_INPUT_BOX_DRIVER_H

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <functional>
#include <string>
#include <thread>

namespace tsypr::test
{

inline bool Eventually(const std::function<bool()>& holds)
{
    constexpr ULONGLONG kPatience = 30000;
    const ULONGLONG begin = GetTickCount64();
    while (!holds())
    {
        if (GetTickCount64() - begin > kPatience)
        {
            return false;
        }
        Sleep(1);
    }
    return true;
}

struct Box
{
    HWND window;
    HWND edit = FindWindowExW(window, nullptr, L"Edit", nullptr);
    HWND ok = FindWindowExW(window, nullptr, L"Button", nullptr);
    HWND cancel = FindWindowExW(window, ok, L"Button", nullptr);
    HWND prompt = FindWindowExW(window, nullptr, L"Static", nullptr);

    void Type(const std::wstring& text) const
    {
        SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(text.c_str()));
    }
    void Press(WPARAM key) const
    {
        PostMessageW(edit, WM_KEYDOWN, key, 0);
    }
    HWND Focus() const
    {
        GUITHREADINFO info = {};
        info.cbSize = sizeof(info);
        GetGUIThreadInfo(GetWindowThreadProcessId(window, nullptr), &info);
        return info.hwndFocus;
    }
};

// Takes the steps as soon as the box is up. No box, and one that the steps leave open, is a failure; whatever comes up
// then is cancelled as long as this lives.
class BoxDriver
{
public:
    explicit BoxDriver(std::function<void(const Box&)> steps)
        : m_thread([this, steps = std::move(steps)] { Run(steps); })
    {
    }
    BoxDriver(const BoxDriver&) = delete;
    BoxDriver& operator=(const BoxDriver&) = delete;
    ~BoxDriver()
    {
        m_isOver = true;
        m_thread.join();
    }

private:
    static HWND FindBox()
    {
        const HWND window = FindWindowW(L"ZarnInputBox", nullptr);
        return IsWindowVisible(window) ? window : nullptr;
    }

    void Run(const std::function<void(const Box&)>& steps)
    {
        HWND window = nullptr;
        const auto isUp = [&] { return (window = FindBox()) != nullptr || m_isOver; };
        EXPECT_TRUE(Eventually(isUp) && window != nullptr) << "no box";
        if (window != nullptr)
        {
            steps(Box{window});
            EXPECT_TRUE(Eventually([window] { return !IsWindow(window); })) << "left open";
        }
        for (; !m_isOver; Sleep(1))
        {
            PostMessageW(FindBox(), WM_CLOSE, 0, 0);
        }
    }

    std::atomic<bool> m_isOver{false};
    std::thread m_thread;
};

} // namespace tsypr::test

#endif
