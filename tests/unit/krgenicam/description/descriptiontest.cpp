#include "readdescription.h"

#include <gmock/gmock.h>

namespace krgenicam {
namespace {

using testing::HasSubstr;

TEST(Description_, Reading_OfAWholeNode_TakesItsPropertiesInOrder) {
  const Description description = ReadNodes("<Integer Name=\" Width \" NameSpace=\"Standard\">\n"
                                            "  <ToolTip> How wide. </ToolTip>\n"
                                            "  <pValue>WidthReg</pValue>\n"
                                            "  <Unknown>x</Unknown>\n"
                                            "</Integer>\n"
                                            "<IntReg Name=\"WidthReg\"><Address>0x10</Address></IntReg>");

  EXPECT_EQ(ShowNode(description, "Width"), "ToolTip=How wide. pValue=WidthReg->WidthReg");
  const NodeDescription& node = description.GetNodes()[description.Find("Width")];
  EXPECT_EQ(node.kind, NodeKind::Integer);
  EXPECT_TRUE(node.isStandard);
  EXPECT_EQ(node.line, 2U);
  EXPECT_EQ(description.GetProperties(node)[1].line, 4U);
  EXPECT_EQ(ShowFaults(description), "");
}

} // namespace
} // namespace krgenicam
