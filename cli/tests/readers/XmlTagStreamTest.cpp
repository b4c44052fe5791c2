// SPDX-License-Identifier: Apache-2.0
#include "mzml/XmlTagStream.h"

#include <gtest/gtest.h>

namespace zav {
namespace {

TEST(XmlMarkup, EndsWhereItsKindEnds)
{
    EXPECT_EQ(xmlMarkupSize("<a>b"), 3);
    EXPECT_EQ(xmlMarkupSize("<a b='>' c=\">'\">d"), 16);
    EXPECT_EQ(xmlMarkupSize("<!-- <a> -- > -->b"), 17);
    EXPECT_EQ(xmlMarkupSize("<![CDATA[ > ]] ]]>b"), 18);
    EXPECT_EQ(xmlMarkupSize("<?xml a='>' ?>b"), 14);
    EXPECT_EQ(xmlMarkupSize("<!DOCTYPE a>b"), 12);
    for (const char *unfinished :
         {"<", "<a", "<a b='>", "<!", "<!-", "<!--", "<!-- >", "<![CDATA[ >", "<![CD", "<?a >"})
        EXPECT_EQ(xmlMarkupSize(unfinished), -1) << unfinished;
}

TEST(XmlAttribute, IsFoundByItsWholeNameOutsideOfOthersValues)
{
    const QByteArrayView tag = "<a idRef=\"id='3'\" id = 'x\"y' empty=\"\"/>";
    EXPECT_EQ(xmlAttribute(tag, "id"), QByteArrayView("x\"y"));
    EXPECT_EQ(xmlAttribute(tag, "idRef"), QByteArrayView("id='3'"));
    EXPECT_EQ(xmlAttribute(tag, "empty"), QByteArrayView(""));
    for (const char *without : {"<a>", "<a", "", "<id='3'>", "<a id>", "<a id=3>", "<a id='3>", "<a id= "})
        EXPECT_EQ(xmlAttribute(without, "id"), std::nullopt) << without;
}

TEST(XmlTag, IsSoundWithANameAndQuotedAttributesAlone)
{
    for (const char *tag : {"<a>", "</a>", "<a/>", "<a b=\"1\">", "<a b='1' c = \"\" />", "<a\n b=\"'x'\"\t>"})
        EXPECT_TRUE(isSoundXmlTag(tag)) << tag;
    for (const char *tag : {"<a b=1>", "<a b=\"1>", "<a b=1\">", "<a b>", "<a =\"1\">", "<a b=\"1\"c=\"2\">",
                            "<a b c=\"1\">", "<a b=\"<\">", "<a", "<>", ""})
        EXPECT_FALSE(isSoundXmlTag(tag)) << tag;
}

TEST(XmlEntities, AreReplacedAndOthersStay)
{
    EXPECT_EQ(withoutXmlEntities("&lt;a&gt; &amp;amp; &quot;&apos;"), "<a> &amp; \"'");
    EXPECT_EQ(withoutXmlEntities("&#65;&#x1F600;"), QString("A") + QString::fromUcs4(U"\U0001F600", 1));
    EXPECT_EQ(withoutXmlEntities("&#0000000065;"), "A");
    EXPECT_EQ(withoutXmlEntities("&" + QString(40, u'0') + ";&amp;"), "&" + QString(40, u'0') + ";&");
    for (const char *plain : {"", "a & b", "&unknown;", "&#0;", "&#x110000;", "&#;", "&#x;", "a;b&", "&", "&&&;;"})
        EXPECT_EQ(withoutXmlEntities(plain), plain);
}

} // namespace
} // namespace zav
