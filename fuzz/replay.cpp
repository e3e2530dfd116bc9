// The entry of fuzz targets in the normal build: hands every file of the folders given to the target, so that inputs
// that once broke a parser are tried in every test run.

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* aData, std::size_t aSize);

int main(int aCount, char** aArguments) {
  std::size_t replayed = 0;
  for (int i = 1; i < aCount; ++i) {
    for (const auto& entry : std::filesystem::directory_iterator(aArguments[i])) {
      std::ifstream file(entry.path(), std::ios::binary);
      const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
      std::cout << entry.path().filename().string() << ", " << bytes.size() << " bytes" << std::endl;
      LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
      ++replayed;
    }
  }
  if (replayed == 0)
    std::cerr << "No seeds were found; name the folders that hold them.\n";
  return replayed > 0 ? 0 : 1;
}
