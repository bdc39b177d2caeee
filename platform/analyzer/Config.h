// The analyzer's settings, which are those of its factory.
#pragma once

#include <memory>
#include <utility>

namespace ca {

class CodeGenerationSupport {};

namespace config {

// The source of settings.
class ConfigSource {
 public:
  virtual ~ConfigSource() = default;
};

class FactoryConfigSource : public ConfigSource {};

class Config {
 public:
  explicit Config(std::shared_ptr<ConfigSource> source) : source_(std::move(source)) {}

 private:
  std::shared_ptr<ConfigSource> source_;
};

}  // namespace config
}  // namespace ca
