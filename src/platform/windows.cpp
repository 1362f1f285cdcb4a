#include "platform/platform.h"

#include <windows.h>

#include <fcntl.h>
#include <io.h>

#include <cwchar>
#include <initializer_list>

namespace zorvane {

namespace {

// The longest path that the file procedures accept: the 4096 bytes of a file name, and room for the folder that makes a
// relative one absolute.
constexpr DWORD kPathCapacity = 8192;

// The system refuses paths of this length or more unless they have the "\\?\" form.
constexpr DWORD kLongPathCharacters = 248;

HANDLE Worker = nullptr;
void (*WorkerBody)() = nullptr;

DWORD WINAPI RunWorkerBody(LPVOID /*unused*/) {
  WorkerBody();
  return 0;
}

// Writes the path to systemPath, which holds kPathCapacity characters, in a form that the system's wide calls accept at
// any length. False if it is empty, too long or not valid text in the code page of the process.
bool BuildSystemPath(const char *path, wchar_t *systemPath) {
  if (MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, path, -1, systemPath, kPathCapacity) == 0)
    return false;
  wchar_t fullPath[kPathCapacity];
  const DWORD length = GetFullPathNameW(systemPath, kPathCapacity, fullPath, nullptr);
  constexpr DWORD longestPrefix = 8; // of the forms below, with the terminator
  if (length == 0 || length + longestPrefix >= kPathCapacity)
    return false;
  if (length < kLongPathCharacters)
    return true;
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
    // A stream without a handle has a negative descriptor.
    const int descriptor = _fileno(stream);
    if (descriptor >= 0)
      _setmode(descriptor, _O_BINARY);
  }
  // This C library treats _IOLBF as full buffering, so the code says what happens.
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

bool HasThreads() { return true; }

bool StartWorker(void (*body)()) {
  WorkerBody = body;
  Worker = CreateThread(nullptr, kWorkerStackBytes, RunWorkerBody, nullptr, STACK_SIZE_PARAM_IS_A_RESERVATION, nullptr);
  return Worker != nullptr;
}

void JoinWorker() {
  WaitForSingleObject(Worker, INFINITE);
  CloseHandle(Worker);
  Worker = nullptr;
}

void SleepMilliseconds(int milliseconds) { Sleep(static_cast<DWORD>(milliseconds)); }

namespace {

// Opens a file on a disk; INVALID_HANDLE_VALUE for anything else: a device or pipe might block.
HANDLE OpenDiskFile(const char *path, DWORD access, DWORD disposition, DWORD flags) {
  wchar_t systemPath[kPathCapacity];
  if (!BuildSystemPath(path, systemPath))
    return INVALID_HANDLE_VALUE;
  HANDLE file = CreateFileW(systemPath, access, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                            disposition, FILE_ATTRIBUTE_NORMAL | flags, nullptr);
  if (file != INVALID_HANDLE_VALUE && GetFileType(file) != FILE_TYPE_DISK) {
    CloseHandle(file);
    return INVALID_HANDLE_VALUE;
  }
  return file;
}

HANDLE OpenDiskFileForReading(const char *path) { return OpenDiskFile(path, GENERIC_READ, OPEN_EXISTING, 0); }

// True for a link to a file or folder, and if the system does not say.
bool IsLink(HANDLE file) {
  FILE_ATTRIBUTE_TAG_INFO information;
  return GetFileInformationByHandleEx(file, FileAttributeTagInfo, &information, sizeof information) == 0 ||
         ((information.FileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
          IsReparseTagNameSurrogate(information.ReparseTag));
}

// A stream for the handle; null for INVALID_HANDLE_VALUE.
std::FILE *MakeStream(HANDLE handle, int flags, const char *mode) {
  if (handle == INVALID_HANDLE_VALUE)
    return nullptr;
  const int descriptor = _open_osfhandle(reinterpret_cast<intptr_t>(handle), flags | _O_BINARY);
  if (descriptor < 0) {
    CloseHandle(handle);
    return nullptr;
  }
  std::FILE *file = _fdopen(descriptor, mode);
  if (file == nullptr)
    _close(descriptor);
  return file;
}

} // namespace

std::FILE *OpenForReading(const char *path) { return MakeStream(OpenDiskFileForReading(path), _O_RDONLY, "rb"); }

std::FILE *OpenForWriting(const char *path) {
  // Opens a link itself instead of its target, and refuses it before anything is emptied.
  HANDLE file = OpenDiskFile(path, GENERIC_WRITE, OPEN_ALWAYS, FILE_FLAG_OPEN_REPARSE_POINT);
  if (file != INVALID_HANDLE_VALUE && (IsLink(file) || SetEndOfFile(file) == 0)) {
    CloseHandle(file);
    return nullptr;
  }
  return MakeStream(file, _O_WRONLY, "wb");
}

bool CanOpenForReading(const char *path) {
  HANDLE file = OpenDiskFileForReading(path);
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
