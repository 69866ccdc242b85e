#include "run_fancyhost.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>

#include "bmp_file.h"
#include "image_file.h"
#include "jpeg_file.h"
#include "png_file.h"

namespace fancy::testing {

std::string FancyhostPath() { return std::string(FANCY_BIN_DIR) + "/fancyhost"; }

RunResult RunFancyhost(const std::vector<std::string>& args, const std::string& home,
                       const std::map<std::string, std::string>& env,
                       const std::function<void(const std::string&, int)>& onLine) {
  RunResult result;
  int outPipe[2], errPipe[2];
  if (pipe(outPipe) != 0 || pipe(errPipe) != 0) return result;
  pid_t pid = fork();
  if (pid == 0) {
    dup2(outPipe[1], 1);
    dup2(errPipe[1], 2);
    close(outPipe[0]);
    close(errPipe[0]);
    close(outPipe[1]);
    close(errPipe[1]);
    setenv("XDG_CONFIG_HOME", home.c_str(), 1);
    for (const auto& [name, value] : env) setenv(name.c_str(), value.c_str(), 1);
    std::vector<char*> argv;
    std::string program = FancyhostPath();
    argv.push_back(program.data());
    std::vector<std::string> copies(args);
    for (std::string& a : copies) argv.push_back(a.data());
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    _exit(127);
  }
  close(outPipe[1]);
  close(errPipe[1]);
  pollfd fds[2] = {{outPipe[0], POLLIN, 0}, {errPipe[0], POLLIN, 0}};
  std::string partial;
  int open = 2;
  while (open > 0) {
    if (poll(fds, 2, -1) < 0) break;
    for (int i = 0; i < 2; ++i) {
      if (fds[i].fd < 0 || !(fds[i].revents & (POLLIN | POLLHUP | POLLERR))) continue;
      char buffer[4096];
      ssize_t got = read(fds[i].fd, buffer, sizeof buffer);
      if (got <= 0) {
        close(fds[i].fd);
        fds[i].fd = -1;
        --open;
        continue;
      }
      if (i == 1) {
        result.err.append(buffer, size_t(got));
        continue;
      }
      result.out.append(buffer, size_t(got));
      if (!onLine) continue;
      partial.append(buffer, size_t(got));
      size_t end;
      while ((end = partial.find('\n')) != std::string::npos) {
        onLine(partial.substr(0, end), pid);
        partial.erase(0, end + 1);
      }
    }
  }
  int status = 0;
  waitpid(pid, &status, 0);
  if (WIFEXITED(status)) result.exitCode = WEXITSTATUS(status);
  else if (WIFSIGNALED(status)) result.exitCode = 128 + WTERMSIG(status);
  return result;
}

RunResult RunInterruptedAt(const std::vector<std::string>& args, const std::string& home,
                           const std::string& delayMs, const std::string& at, bool* sent) {
  *sent = false;
  return RunFancyhost(args, home, {{"FANCYHOST_TEST_STEP_DELAY_MS", delayMs}},
                      [&](const std::string& line, int pid) {
                        if (!*sent && line == at) {
                          kill(pid, SIGINT);
                          *sent = true;
                        }
                      });
}

bool Contains(const std::string& text, const std::string& part) {
  return text.find(part) != std::string::npos;
}

std::vector<std::string> Lines(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0, end;
  while ((end = text.find('\n', start)) != std::string::npos) {
    lines.push_back(text.substr(start, end - start));
    start = end + 1;
  }
  if (start < text.size()) lines.push_back(text.substr(start));
  return lines;
}

void WritePicture(const std::string& path, const FilePicture& picture) {
  std::vector<uint8_t> bytes;
  std::string error;
  FileFormat format = FormatFromName(path);
  bool ok = false;
  if (format == FileFormat::kBmp) {
    bytes = EncodeBmp(picture);
    ok = !bytes.empty();
  } else if (format == FileFormat::kPng) {
    ok = EncodePng(picture, &bytes, &error);
  } else if (format == FileFormat::kJpeg) {
    ok = EncodeJpeg(picture, 95, &bytes, &error);
  }
  ASSERT_TRUE(ok) << path << ": " << error;
  FILE* file = std::fopen(path.c_str(), "wb");
  ASSERT_NE(file, nullptr) << path;
  ASSERT_EQ(std::fwrite(bytes.data(), 1, bytes.size(), file), bytes.size());
  std::fclose(file);
}

FilePicture ReadPicture(const std::string& path) {
  FilePicture picture;
  std::string error;
  EXPECT_TRUE(ReadPictureFile(path, &picture, &error)) << path << ": " << error;
  return picture;
}

FilePicture TestPicture(int32_t width, int32_t height, PixelMode mode) {
  FilePicture picture;
  picture.width = width;
  picture.height = height;
  picture.mode = mode;
  const int planes = PlanesOf(mode);
  picture.pixels.resize(size_t(width) * size_t(height) * size_t(planes));
  for (int32_t y = 0; y < height; ++y)
    for (int32_t x = 0; x < width; ++x)
      for (int p = 0; p < planes; ++p) {
        int checker = ((x / 4 + y / 4) & 1) * 40;
        int value = (x * 255 / std::max(1, width - 1) * (p + 1) + y * 7 * (3 - p % 3) + checker) % 256;
        picture.pixels[(size_t(y) * size_t(width) + size_t(x)) * size_t(planes) + size_t(p)] =
            uint8_t(value);
      }
  return picture;
}

bool Exists(const std::string& path) {
  struct stat info;
  return stat(path.c_str(), &info) == 0;
}

}  // namespace fancy::testing
