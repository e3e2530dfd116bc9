#include "map/documentationurl.h"

#include "describedcamera.h"

namespace {

struct URLCase {
  const char* name;
  const char* text;
  const char* url;
};

void PrintTo(const URLCase& aCase, std::ostream* aStream) {
  *aStream << aCase.name;
}

class DocumentationURL : public testing::TestWithParam<URLCase> {};

std::string GetURL(const std::string& aText, const std::string& aName = "Width") {
  DescribedCamera camera("<Integer Name=\"" + aName + "\"><DocuURL>" + aText + "</DocuURL><Value>1</Value></Integer>");
  KrString url;
  EXPECT_TRUE(camera.Integer(aName.c_str()).GetDocuURL(url).IsOK());
  return url.CStr();
}

} // namespace

TEST_P(DocumentationURL, WithPlaceholders_HasWhatIsKnown) {
  EXPECT_EQ(GetURL(GetParam().text), GetParam().url);
}

INSTANTIATE_TEST_SUITE_P(
    All, DocumentationURL,
    testing::Values(URLCase{"None", "http://a/b", "http://a/b"},
                    URLCase{"Name", "http://a/$(NAME).html", "http://a/Width.html"},
                    URLCase{"NodeName", "$(Sys::NodeName)", "Width"},
                    URLCase{"ModelAndVendor", "$(Sys::VendorName)/$(Sys::ModelName)/", "Vendor/Model/"},
                    URLCase{"Versions", "$(Sys::DeviceVersion)-$(Sys::SchemaVersion)", "1.0.0-1.1"},
                    URLCase{"StandardNamespace", "$(Sys::StandardNamespace)", "None"},
                    URLCase{"Unknown", "$(Sys::Language)/$(NAME)/$(Other)", "$(Sys::Language)/Width/$(Other)"},
                    URLCase{"Unclosed", "$(NAME", "$(NAME"}, URLCase{"KnownInsideUnknown", "$($(NAME))", "$(Width)"}),
    [](const auto& aInfo) { return aInfo.param.name; });

TEST(DocumentationURL, ThatWouldGrowTooLong_StaysAsItIs) {
  const std::string name(1000, 'n');
  std::string text;
  for (std::size_t i = 0; i <= krgenicam::kMaxDocumentationURL / name.size(); ++i)
    text += "$(NAME)";

  EXPECT_EQ(GetURL(text, name), text);
  EXPECT_EQ(GetURL("$(NAME)$(NAME)", name), name + name);
}

TEST(DocumentationURL, OfManyUnclosedPlaceholders_StaysAsItIs) {
  std::string text;
  for (int i = 0; i < 10'000; ++i)
    text += "$(";

  EXPECT_EQ(GetURL(text + ")"), text + ")");
}
