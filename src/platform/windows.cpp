#include "platform/platform.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cwchar>
#include <initializer_list>

namespace zorvane {

namespace {

// Longest path that the file procedures take: the 4096 bytes of a file name,
// and room for the folder in front of a relative one.
constexpr DWORD kPathCapacity = 8192;

// Paths from this length on need the "\\?\" form; the system refuses them
// otherwise.
constexpr DWORD kLongPathCharacters = 248;

HANDLE worker = nullptr;
void (*workerBody)() = nullptr;

DWORD WINAPI RunWorkerBody(LPVOID /*unused*/) {
  workerBody();
  return 0;
}

// Writes the path into `systemPath`, which holds kPathCapacity characters, in
// a form that the system's wide calls take at any length. False when it is
// empty, too long or no text of the process's code page.
bool BuildSystemPath(const char *path, wchar_t *systemPath) {
  if (MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, path, -1, systemPath, kPathCapacity) == 0) {
    return false;
  }
  wchar_t fullPath[kPathCapacity];
  const DWORD length = GetFullPathNameW(systemPath, kPathCapacity, fullPath, nullptr);
  constexpr DWORD kLongestPrefix = 8; // of the forms below, with the terminator
  if (length == 0 || length + kLongestPrefix >= kPathCapacity) {
    return false;
  }
  if (length < kLongPathCharacters) {
    return true;
  }
  if (std::wcsncmp(fullPath, L"\\\\?\\", 4) == 0 || std::wcsncmp(fullPath, L"\\\\.\\", 4) == 0) {
    std::wcscpy(systemPath, fullPath);
  } else if (std::wcsncmp(fullPath, L"\\\\", 2) == 0) {
    std::wcscpy(systemPath, L"\\\\?\\UNC");
    std::wcscat(systemPath, fullPath + 1);
  } else {
    std::wcscpy(systemPath, L"\\\\?\\");
    std::wcscat(systemPath, fullPath);
  }
  return true;
}

} // namespace

bool IsStandardInputUsable() {
  HANDLE handle = GetStdHandle(STD_INPUT_HANDLE);
  return handle != nullptr && handle != INVALID_HANDLE_VALUE && GetFileType(handle) != FILE_TYPE_UNKNOWN;
}

void PrepareStandardStreams() {
  for (std::FILE *stream : {stdin, stdout, stderr}) {
    // A stream without a handle behind it has a negative descriptor.
    const int descriptor = _fileno(stream);
    if (descriptor >= 0) {
      _setmode(descriptor, _O_BINARY);
    }
  }
  // The C library here takes _IOLBF for full buffering, so that is what is asked for.
  std::setvbuf(stdout, nullptr, _IOFBF, BUFSIZ);
}

void ShowMessageBox(const char *caption, const char *text) { MessageBoxA(nullptr, text, caption, MB_ICONINFORMATION); }

double PerformanceMilliseconds() {
  LARGE_INTEGER counter;
  LARGE_INTEGER frequency;
  QueryPerformanceCounter(&counter);
  QueryPerformanceFrequency(&frequency);
  return static_cast<double>(counter.QuadPart) * 1000.0 / static_cast<double>(frequency.QuadPart);
}

bool StartWorker(void (*body)()) {
  workerBody = body;
  worker = CreateThread(nullptr, kWorkerStackBytes, RunWorkerBody, nullptr, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  return worker != nullptr;
}

void JoinWorker() {
  WaitForSingleObject(worker, INFINITE);
  CloseHandle(worker);
  worker = nullptr;
}

void SleepMilliseconds(int milliseconds) { Sleep(static_cast<DWORD>(milliseconds)); }

namespace {

// Opens what can be read as a file, INVALID_HANDLE_VALUE for anything else: a device or a pipe may hold the engine.
HANDLE OpenFileHandle(const char *path) {
  wchar_t systemPath[kPathCapacity];
  if (!BuildSystemPath(path, systemPath)) {
    return INVALID_HANDLE_VALUE;
  }
  HANDLE file = CreateFileW(systemPath, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file != INVALID_HANDLE_VALUE && GetFileType(file) != FILE_TYPE_DISK) {
    CloseHandle(file);
    return INVALID_HANDLE_VALUE;
  }
  return file;
}

} // namespace

std::FILE *OpenForReading(const char *path) {
  HANDLE handle = OpenFileHandle(path);
  if (handle == INVALID_HANDLE_VALUE) {
    return nullptr;
  }
  const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), _O_RDONLY | _O_BINARY);
  if (descriptor < 0) {
    CloseHandle(handle);
    return nullptr;
  }
  std::FILE *file = _fdopen(descriptor, "rb");
  if (file == nullptr) {
    _close(descriptor);
  }
  return file;
}

std::FILE *OpenForWriting(const char *path) {
  wchar_t systemPath[kPathCapacity];
  return BuildSystemPath(path, systemPath) ? _wfopen(systemPath, L"wb") : nullptr;
}

bool CanOpenForReading(const char *path) {
  HANDLE file = OpenFileHandle(path);
  return file != INVALID_HANDLE_VALUE && CloseHandle(file) != 0;
}

bool RenameFile(const char *from, const char *to) {
  wchar_t systemFrom[kPathCapacity];
  wchar_t systemTo[kPathCapacity];
  return BuildSystemPath(from, systemFrom) && BuildSystemPath(to, systemTo) &&
         MoveFileExW(systemFrom, systemTo, 0) != 0;
}

bool RemoveFile(const char *path) {
  wchar_t systemPath[kPathCapacity];
  return BuildSystemPath(path, systemPath) && DeleteFileW(systemPath) != 0;
}

} // namespace zorvane
