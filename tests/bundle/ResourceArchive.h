// Reads the resource archive of a bundle as the component runtime does.
#pragma once

#include <elf.h>
#include <zip.h>

#include <cstring>
#include <map>
#include <stdexcept>
#include <string>

// The bytes of the section; throws if there is none.
inline std::string bytesOfSection(const std::string& elf, const std::string& name) {
  Elf64_Ehdr header;
  std::memcpy(&header, elf.data(), sizeof header);
  const auto section = [&](std::size_t index) {
    Elf64_Shdr found;
    std::memcpy(&found, elf.data() + header.e_shoff + index * sizeof found, sizeof found);
    return found;
  };
  const Elf64_Off names = section(header.e_shstrndx).sh_offset;
  for (std::size_t i = 0; i < header.e_shnum; ++i) {
    const Elf64_Shdr found = section(i);
    if (name == elf.data() + names + found.sh_name) {
      return elf.substr(found.sh_offset, found.sh_size);
    }
  }
  throw std::runtime_error("no section " + name);
}

// The entries of a zip by name; throws if `bytes` are no zip.
inline std::map<std::string, std::string> entriesOfZip(const std::string& bytes) {
  zip_source_t* source = zip_source_buffer_create(bytes.data(), bytes.size(), 0, nullptr);
  zip_t* archive = zip_open_from_source(source, ZIP_RDONLY, nullptr);
  if (archive == nullptr) throw std::runtime_error("no zip");
  std::map<std::string, std::string> entries;
  for (zip_int64_t i = 0; i < zip_get_num_entries(archive, 0); ++i) {
    zip_stat_t about;
    zip_stat_index(archive, i, 0, &about);
    std::string content(about.size, '\0');
    zip_file_t* file = zip_fopen_index(archive, i, 0);
    if (zip_fread(file, content.data(), content.size()) != static_cast<zip_int64_t>(about.size)) {
      throw std::runtime_error("cannot be unpacked");
    }
    zip_fclose(file);
    entries[about.name] = content;
  }
  zip_discard(archive);
  return entries;
}
