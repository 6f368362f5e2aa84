# watch_system_calls(target): the calls whose pointers system_calls.cpp replaces in a test program that has it.
function(watch_system_calls target)
  foreach(function
      BitBlt CreateCompatibleBitmap CreateCompatibleDC CreateDIBSection CreateFontIndirectW DeleteDC DeleteObject
      GetDeviceCaps GetObjectW SelectObject SetBkMode SetTextAlign SetTextColor TextOutW
      CreateThread CreateWindowExW GetDC GetProcAddress LoadImageW RegCreateKeyExW RegisterClassExW ReleaseDC)
    target_link_options(${target} PRIVATE -Wl,--wrap=__imp_${function})
  endforeach()
endfunction()
