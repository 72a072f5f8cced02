#include <tessera/LuSVNCoder.h>
#include <tessera/LuSVNData.h>
#include <tessera/LuSVNKeyedArchiver.h>
#include <tessera/LuSVNPlatformExceptions.h>

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <functional>
#include <limits>
#include <thread>
#include <unordered_set>

namespace {

bool sameDouble(double a, double b)
{
    return (std::isnan(a) && std::isnan(b)) || std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

// A value class held by value in the others, decoded through initWithCoder.
class CoderTestPoint final : public LuSVNCoding {
public:
    CoderTestPoint(double x, double y) : x(x), y(y) {}
    static CoderTestPoint initWithCoder(LuSVNCoder& coder)
    {
        LuSVNRequireKeyedUnarchiver(coder);
        return CoderTestPoint(coder.decodeDoubleForKey("x"), coder.decodeDoubleForKey("y"));
    }
    std::string archiveClassName() const override { return "CoderTestPoint"; }
    void encodeWithCoder(LuSVNCoder& coder) const override
    {
        LuSVNRequireKeyedArchiver(coder);
        coder.encodeDouble(x, "x");
        coder.encodeDouble(y, "y");
    }
    bool operator==(const CoderTestPoint& other) const { return sameDouble(x, other.x) && sameDouble(y, other.y); }

    double x, y;
};

// The base of a small hierarchy, decoded through constructors.
class CoderTestNode : public LuSVNCoding {
public:
    CoderTestNode(const std::optional<std::string>& name, std::int64_t id) : name(name), id(id) {}
    explicit CoderTestNode(LuSVNCoder& coder)
    {
        LuSVNRequireKeyedUnarchiver(coder);
        name = coder.decodeStringForKey("name");
        id = coder.decodeInt64ForKey("id");
    }
    std::string archiveClassName() const override { return "CoderTestNode"; }
    void encodeWithCoder(LuSVNCoder& coder) const override
    {
        LuSVNRequireKeyedArchiver(coder);
        coder.encodeString(name, "name");
        coder.encodeInt64(id, "id");
    }
    virtual bool equals(const CoderTestNode& other) const
    {
        return typeid(*this) == typeid(other) && name == other.name && id == other.id;
    }

    std::optional<std::string> name;
    std::int64_t id = 0;
};

class CoderTestLeaf : public CoderTestNode {
public:
    using CoderTestNode::CoderTestNode;
    explicit CoderTestLeaf(LuSVNCoder& coder) : CoderTestNode(coder)
    {
        data = coder.decodeDataForKey("data");
        ratio = coder.decodeDoubleForKey("ratio");
        flag = coder.decodeBoolForKey("flag");
        origin = coder.decodeValueOfClassForKey<CoderTestPoint>("origin");
    }
    std::string archiveClassName() const override { return "CoderTestLeaf"; }
    void encodeWithCoder(LuSVNCoder& coder) const override
    {
        CoderTestNode::encodeWithCoder(coder);
        coder.encodeData(data, "data");
        coder.encodeDouble(ratio, "ratio");
        coder.encodeBool(flag, "flag");
        coder.encodeObject(origin, "origin");
    }
    bool equals(const CoderTestNode& other) const override
    {
        if (!CoderTestNode::equals(other))
            return false;
        const auto& leaf = static_cast<const CoderTestLeaf&>(other);
        return data == leaf.data && sameDouble(ratio, leaf.ratio) && flag == leaf.flag && origin == leaf.origin;
    }

    std::optional<LuSVNData> data;
    double ratio = 0;
    bool flag = false;
    std::optional<CoderTestPoint> origin;
};

class CoderTestBranch : public CoderTestNode {
public:
    using CoderTestNode::CoderTestNode;
    explicit CoderTestBranch(LuSVNCoder& coder) : CoderTestNode(coder)
    {
        children = coder.decodeArrayOfObjectsOfClassForKey<CoderTestNode>("children");
        tags = coder.decodeStringArrayForKey("tags");
        first = coder.decodeObjectOfClassForKey<CoderTestNode>("first");
        points = coder.decodeArrayOfValuesOfClassForKey<CoderTestPoint>("points").value_or(std::vector<CoderTestPoint>());
    }
    std::string archiveClassName() const override { return "CoderTestBranch"; }
    void encodeWithCoder(LuSVNCoder& coder) const override
    {
        CoderTestNode::encodeWithCoder(coder);
        coder.encodeObjectArray(children, "children");
        coder.encodeStringArray(tags, "tags");
        coder.encodeObject(first, "first");
        coder.encodeObjectArray(points, "points");
    }
    bool equals(const CoderTestNode& other) const override
    {
        if (!CoderTestNode::equals(other))
            return false;
        const auto& branch = static_cast<const CoderTestBranch&>(other);
        if (children.has_value() != branch.children.has_value() || tags != branch.tags || points != branch.points)
            return false;
        if (children) {
            if (children->size() != branch.children->size())
                return false;
            for (std::size_t i = 0; i < children->size(); ++i)
                if (!(*children)[i]->equals(*(*branch.children)[i]))
                    return false;
        }
        return first ? branch.first && first->equals(*branch.first) : !branch.first;
    }

    std::optional<std::vector<std::shared_ptr<CoderTestNode>>> children;
    std::optional<std::vector<std::string>> tags;
    std::shared_ptr<CoderTestNode> first;
    std::vector<CoderTestPoint> points;
};

const LuSVNArchivableClassRegistrar<CoderTestPoint> pointRegistrar("CoderTestPoint");
const LuSVNArchivableClassRegistrar<CoderTestNode> nodeRegistrar("CoderTestNode");
const LuSVNArchivableClassRegistrar<CoderTestLeaf> leafRegistrar("CoderTestLeaf");
const LuSVNArchivableClassRegistrar<CoderTestBranch> branchRegistrar("CoderTestBranch");

// Encodes whatever its script says; for the archiver's refusals.
class CoderTestScripted final : public LuSVNCoding {
public:
    explicit CoderTestScripted(std::function<void(LuSVNCoder&)> script, std::string className = "CoderTestScripted")
        : script(std::move(script)), className(std::move(className))
    {
    }
    std::string archiveClassName() const override { return className; }
    void encodeWithCoder(LuSVNCoder& coder) const override { script(coder); }

    std::function<void(LuSVNCoder&)> script;
    std::string className;
};

// Registers a decoding function for the length of a test.
class ScopedClass {
public:
    ScopedClass(std::string name, LuSVNDecodingFunction decoder) : name_(std::move(name))
    {
        LuSVNRegisterArchivableClass(name_, std::move(decoder));
    }
    ~ScopedClass() { LuSVNRegisterArchivableClass(name_, {}); }

private:
    std::string name_;
};

// A coder without keys: every archivable class must refuse it.
class CoderTestSequentialCoder final : public LuSVNCoder {
public:
    bool allowsKeyedCoding() const override { return false; }
};

template <class F>
std::string invalidArgumentReason(F&& f)
{
    try {
        f();
    } catch (const LuSVNInvalidArgumentException& error) {
        return error.what();
    }
    ADD_FAILURE() << "no LuSVNInvalidArgumentException";
    return {};
}

template <class T>
std::shared_ptr<T> roundTrip(const T& object)
{
    return LuSVNKeyedUnarchiver::unarchiveObjectOfClass<T>(LuSVNKeyedArchiver::archivedDataWithRootObject(object));
}

std::shared_ptr<CoderTestLeaf> makeLeaf(std::string name, std::int64_t id)
{
    auto leaf = std::make_shared<CoderTestLeaf>(std::move(name), id);
    leaf->data = LuSVNData(std::vector<std::uint8_t>{0, 0xFF, 0x80});
    leaf->ratio = -1.25;
    leaf->flag = true;
    leaf->origin = CoderTestPoint(3, 4);
    return leaf;
}

} // namespace

TEST(LuSVNCoderTest, RoundTripKeepsClassesAndValuesOfNestedObjects)
{
    auto inner = std::make_shared<CoderTestBranch>("inner", 2);
    inner->children.emplace();
    inner->first = makeLeaf("deep", 3);
    CoderTestBranch root("root", 1);
    root.children = std::vector<std::shared_ptr<CoderTestNode>>{makeLeaf("a", 10), inner,
                                                                std::make_shared<CoderTestNode>("plain", 11)};
    root.tags = std::vector<std::string>{"z", "", "ä€𝄞"};
    root.first = inner;
    root.points = {CoderTestPoint(1, 2), CoderTestPoint(-0.0, 1e300)};

    auto decoded = roundTrip(root);
    ASSERT_TRUE(decoded);
    EXPECT_TRUE(root.equals(*decoded));
    ASSERT_TRUE(decoded->children);
    ASSERT_EQ(decoded->children->size(), 3u);
    EXPECT_TRUE(std::dynamic_pointer_cast<CoderTestLeaf>((*decoded->children)[0]));
    EXPECT_TRUE(std::dynamic_pointer_cast<CoderTestBranch>((*decoded->children)[1]));
    EXPECT_EQ(typeid(*(*decoded->children)[2]), typeid(CoderTestNode));
    auto decodedInner = std::dynamic_pointer_cast<CoderTestBranch>(decoded->first);
    ASSERT_TRUE(decodedInner);
    EXPECT_TRUE(std::dynamic_pointer_cast<CoderTestLeaf>(decodedInner->first));

    // The untyped entry point yields the same concrete class.
    auto untyped = LuSVNKeyedUnarchiver::unarchiveObjectWithData(LuSVNKeyedArchiver::archivedDataWithRootObject(root));
    EXPECT_EQ(typeid(*untyped), typeid(CoderTestBranch));
}

TEST(LuSVNCoderTest, ArchiveTextKeepsEncodingOrder)
{
    auto leaf = std::make_shared<CoderTestLeaf>("n", 7);
    leaf->data = LuSVNData(std::vector<std::uint8_t>{1, 2, 3});
    leaf->ratio = 0.5;
    leaf->flag = true;
    CoderTestBranch branch(std::nullopt, -1);
    branch.children = std::vector<std::shared_ptr<CoderTestNode>>{std::make_shared<CoderTestNode>("c", 2)};
    branch.tags = std::vector<std::string>{"z", "a"};
    branch.points = {CoderTestPoint(1, -2.5)};

    struct Case {
        const CoderTestNode& object;
        std::string text;
    } cases[] = {
        {*leaf, R"({"$class":"CoderTestLeaf","name":"n","id":7,"data":"AQID","ratio":0.5,"flag":true,"origin":null})"},
        {branch, R"({"$class":"CoderTestBranch","name":null,"id":-1,"children":[{"$class":"CoderTestNode","name":"c","id":2}],)"
                 R"("tags":["z","a"],"first":null,"points":[{"$class":"CoderTestPoint","x":1.0,"y":-2.5}]})"},
    };
    for (const Case& c : cases) {
        EXPECT_EQ(LuSVNKeyedArchiver::archivedDataWithRootObject(c.object), c.text);
        auto decoded = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<CoderTestNode>(c.text);
        EXPECT_TRUE(c.object.equals(*decoded)) << c.text;
    }
}

TEST(LuSVNCoderTest, NilStaysDistinctFromEmpty)
{
    for (bool nil : {true, false}) {
        SCOPED_TRACE(nil ? "nil" : "empty");
        CoderTestBranch branch(nil ? std::nullopt : std::optional<std::string>(""), 0);
        if (!nil) {
            branch.children.emplace();
            branch.tags.emplace();
        }
        CoderTestLeaf leaf(nil ? std::nullopt : std::optional<std::string>(""), 0);
        if (!nil)
            leaf.data = LuSVNData();

        auto decodedBranch = roundTrip(branch);
        EXPECT_EQ(decodedBranch->name.has_value(), !nil);
        EXPECT_EQ(decodedBranch->children.has_value(), !nil);
        EXPECT_EQ(decodedBranch->tags.has_value(), !nil);
        EXPECT_TRUE(branch.equals(*decodedBranch));
        auto decodedLeaf = roundTrip(leaf);
        EXPECT_EQ(decodedLeaf->data.has_value(), !nil);
        EXPECT_EQ(decodedLeaf->name.has_value(), !nil);
    }
}

TEST(LuSVNCoderTest, AbsentKeysDecodeAsZeroAndUnknownKeysAreIgnored)
{
    auto leaf = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<CoderTestLeaf>(
        R"({"$class":"CoderTestLeaf","added":[1,{"x":2}],"id":5})");
    EXPECT_EQ(leaf->id, 5);
    EXPECT_FALSE(leaf->name);
    EXPECT_FALSE(leaf->data);
    EXPECT_EQ(leaf->ratio, 0.0);
    EXPECT_FALSE(leaf->flag);
    EXPECT_FALSE(leaf->origin);
    auto branch = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<CoderTestBranch>(R"({"$class":"CoderTestBranch"})");
    EXPECT_FALSE(branch->children);
    EXPECT_FALSE(branch->tags);
    EXPECT_FALSE(branch->first);
}

TEST(LuSVNCoderTest, ContainsValueForKeySeesExplicitNil)
{
    std::vector<std::pair<std::string, bool>> seen;
    ScopedClass probe("CoderTestProbe", [&](LuSVNCoder& coder) {
        for (const char* key : {"nil", "value", "absent", "$class"})
            seen.emplace_back(key, coder.containsValueForKey(key));
        return std::make_shared<CoderTestNode>("probe", 0);
    });
    LuSVNKeyedUnarchiver::unarchiveObjectWithData(R"({"$class":"CoderTestProbe","nil":null,"value":0})");
    std::vector<std::pair<std::string, bool>> expected{{"nil", true}, {"value", true}, {"absent", false}, {"$class", false}};
    EXPECT_EQ(seen, expected);
}

TEST(LuSVNCoderTest, DataRoundTripsExactly)
{
    std::vector<std::uint8_t> all(256);
    for (int i = 0; i < 256; ++i)
        all[i] = static_cast<std::uint8_t>(i);
    std::vector<LuSVNData> cases{LuSVNData(all), LuSVNData(std::vector<std::uint8_t>(all.rbegin(), all.rend()))};
    // Every length modulo 3, for the padding of the last group.
    for (std::size_t length = 0; length <= 5; ++length)
        cases.emplace_back(all.data() + 250, length);
    for (const LuSVNData& data : cases) {
        CoderTestLeaf leaf("d", 0);
        leaf.data = data;
        auto decoded = roundTrip(leaf);
        ASSERT_TRUE(decoded->data) << data.size();
        EXPECT_EQ(*decoded->data, data) << data.size();
    }
}

TEST(LuSVNCoderTest, NumbersRoundTripExactly)
{
    for (std::int64_t id : {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max(),
                            std::int64_t(0), std::int64_t(-1), std::int64_t(1) << 53 | 1}) {
        EXPECT_EQ(roundTrip(CoderTestNode("n", id))->id, id);
    }
    for (double ratio : {0.1, -0.0, 1.0, 5e-324, std::numeric_limits<double>::max(), -std::numeric_limits<double>::min(),
                         1e15 + 0.3, std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                         std::numeric_limits<double>::quiet_NaN()}) {
        CoderTestLeaf leaf("r", 0);
        leaf.ratio = ratio;
        EXPECT_TRUE(sameDouble(roundTrip(leaf)->ratio, ratio)) << ratio;
    }
    // Integral JSON numbers are acceptable doubles.
    EXPECT_EQ(LuSVNKeyedUnarchiver::unarchiveObjectOfClass<CoderTestLeaf>(R"({"$class":"CoderTestLeaf","ratio":3})")->ratio,
              3.0);
}

TEST(LuSVNCoderTest, NonKeyedCoderIsRefused)
{
    CoderTestSequentialCoder coder;
    EXPECT_EQ(invalidArgumentReason([&] { CoderTestLeaf("x", 1).encodeWithCoder(coder); }), "Keyed archiver required");
    EXPECT_EQ(invalidArgumentReason([&] { CoderTestPoint(1, 2).encodeWithCoder(coder); }), "Keyed archiver required");
    for (const char* className : {"CoderTestNode", "CoderTestLeaf", "CoderTestBranch", "CoderTestPoint"}) {
        LuSVNDecodingFunction decoder = LuSVNArchivableClassDecoder(className);
        ASSERT_TRUE(decoder) << className;
        EXPECT_EQ(invalidArgumentReason([&] { decoder(coder); }), "Keyed unarchiver required") << className;
    }
}

TEST(LuSVNCoderTest, MembersOfTheOtherDirectionAreUnavailable)
{
    std::string reason;
    CoderTestScripted probe([&](LuSVNCoder& coder) {
        reason = invalidArgumentReason([&] { coder.decodeInt64ForKey("k"); });
    });
    LuSVNKeyedArchiver::archivedDataWithRootObject(probe);
    EXPECT_EQ(reason, "decodeInt64ForKey is not available in this coder");

    ScopedClass decoding("CoderTestProbe", [&](LuSVNCoder& coder) {
        reason = invalidArgumentReason([&] { coder.encodeObject(CoderTestPoint(0, 0), "p"); });
        return std::make_shared<CoderTestNode>("probe", 0);
    });
    LuSVNKeyedUnarchiver::unarchiveObjectWithData(R"({"$class":"CoderTestProbe"})");
    EXPECT_EQ(reason, "encodeObject is not available in this coder");
}

TEST(LuSVNCoderTest, RootOfAnotherClassIsRefused)
{
    std::string branchArchive = LuSVNKeyedArchiver::archivedDataWithRootObject(CoderTestBranch("b", 1));
    EXPECT_EQ(invalidArgumentReason([&] { LuSVNKeyedUnarchiver::unarchiveObjectOfClass<CoderTestLeaf>(branchArchive); }),
              "Root object of class CoderTestBranch is not of the expected class");
    // A subclass is a node, and still its own class.
    EXPECT_EQ(typeid(*LuSVNKeyedUnarchiver::unarchiveObjectOfClass<CoderTestNode>(branchArchive)), typeid(CoderTestBranch));
}

TEST(LuSVNCoderTest, BadContentIsRefused)
{
    struct Case {
        const char* archive;
        const char* reason;
    } cases[] = {
        // Classes
        {R"({"$class":"Foo"})", "Cannot decode object of unknown class Foo for key root"},
        {R"({"$class":"CoderTestBranch","first":{"$class":"Foo"}})",
         "Cannot decode object of unknown class Foo for key first"},
        {R"({"$class":"CoderTestBranch","children":[{"$class":"CoderTestNode"},{"$class":"Bar"}]})",
         "Cannot decode object of unknown class Bar for key children"},
        {R"({"path":"/a"})", "Cannot decode object without class name for key root"},
        {R"({"$class":7})", "Cannot decode object without class name for key root"},
        {R"({"$class":"CoderTestBranch","first":{"$class":"CoderTestPoint"}})",
         "Object of class CoderTestPoint for key first is not of the expected class"},
        {R"({"$class":"CoderTestBranch","children":[{"$class":"CoderTestNode"},{"$class":"CoderTestPoint"}]})",
         "Object of class CoderTestPoint for key children is not of the expected class"},
        // Held by value: a subclass would be cut down to its base.
        {R"({"$class":"CoderTestLeaf","origin":{"$class":"CoderTestNode"}})",
         "Object of class CoderTestNode for key origin is not of the expected class"},
        {R"({"$class":"CoderTestBranch","points":[{"$class":"CoderTestLeaf"}]})",
         "Object of class CoderTestLeaf for key points is not of the expected class"},
        // Kinds
        {R"({"$class":"CoderTestNode","id":"7"})", "Cannot decode integer for key id: the archive holds a string"},
        {R"({"$class":"CoderTestNode","id":1.5})",
         "Cannot decode integer for key id: the archive holds a floating-point number"},
        {R"({"$class":"CoderTestNode","id":null})", "Cannot decode integer for key id: the archive holds nil"},
        {R"({"$class":"CoderTestNode","id":9223372036854775808})", "Cannot decode integer for key id: out of range"},
        {R"({"$class":"CoderTestNode","id":-9223372036854775809})",
         "Cannot decode integer for key id: the archive holds a floating-point number"},
        {R"({"$class":"CoderTestNode","name":5})", "Cannot decode string for key name: the archive holds an integer"},
        {R"({"$class":"CoderTestLeaf","flag":1})", "Cannot decode boolean for key flag: the archive holds an integer"},
        {R"({"$class":"CoderTestLeaf","ratio":"1.5"})", "Cannot decode double for key ratio: the archive holds a string"},
        {R"({"$class":"CoderTestLeaf","ratio":true})", "Cannot decode double for key ratio: the archive holds a boolean"},
        {R"({"$class":"CoderTestLeaf","data":[1,2]})", "Cannot decode data for key data: the archive holds an array"},
        {R"({"$class":"CoderTestLeaf","data":"AQI"})", "Cannot decode data for key data: invalid base64"},
        {R"({"$class":"CoderTestLeaf","data":"AQ=D"})", "Cannot decode data for key data: invalid base64"},
        {R"({"$class":"CoderTestLeaf","data":"AB=="})", "Cannot decode data for key data: invalid base64"},
        {R"({"$class":"CoderTestLeaf","data":"AQ==AQ=="})", "Cannot decode data for key data: invalid base64"},
        {R"({"$class":"CoderTestLeaf","data":"AQ\nI="})", "Cannot decode data for key data: invalid base64"},
        {R"({"$class":"CoderTestLeaf","origin":"p"})", "Cannot decode object for key origin: the archive holds a string"},
        {R"({"$class":"CoderTestBranch","tags":"a"})",
         "Cannot decode string array for key tags: the archive holds a string"},
        {R"({"$class":"CoderTestBranch","tags":["a",null]})",
         "Cannot decode string array element for key tags: the archive holds nil"},
        {R"({"$class":"CoderTestBranch","children":{"$class":"CoderTestNode"}})",
         "Cannot decode object array for key children: the archive holds an object"},
        {R"({"$class":"CoderTestBranch","children":[null]})",
         "Cannot decode object array element for key children: the archive holds nil"},
        {R"([{"$class":"CoderTestNode"}])", "Cannot decode object for key root: the archive holds an array"},
        {"null", "Cannot decode archive: no root object"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(invalidArgumentReason([&] { LuSVNKeyedUnarchiver::unarchiveObjectWithData(c.archive); }), c.reason)
            << c.archive;
}

TEST(LuSVNCoderTest, MalformedTextIsRefused)
{
    const std::string prefix = "Cannot decode archive: malformed JSON";
    std::string cases[] = {
        "",
        "{",
        "not json",
        R"({"$class":"CoderTestNode",})",
        R"({"$class":"CoderTestNode"} trailing)",
        "{\"$class\":\"CoderTestNode\",\"name\":\"\xff\"}",
        R"({"$class":"CoderTestNode","name":"\ud800"})",
        R"({"$class":"CoderTestNode","id":1e400})",
        std::string("{\"$class\":\"CoderTestNode\"}\0", 27),
        std::string("{\"$class\":\"CoderTestNode\",\0\"id\":1}", 34),
    };
    for (const std::string& text : cases) {
        std::string reason = invalidArgumentReason([&] { LuSVNKeyedUnarchiver::unarchiveObjectWithData(text); });
        EXPECT_EQ(reason.substr(0, prefix.size()), prefix) << text;
    }
    EXPECT_EQ(invalidArgumentReason([] { LuSVNKeyedUnarchiver::unarchiveObjectWithData(std::string(100000, '[')); }),
              "Cannot decode archive: objects nest too deeply");
    EXPECT_EQ(invalidArgumentReason([] {
                  std::string text;
                  for (int i = 0; i < 100000; ++i)
                      text += R"({"$class":"CoderTestBranch","first":)";
                  LuSVNKeyedUnarchiver::unarchiveObjectWithData(text);
              }),
              "Cannot decode archive: objects nest too deeply");
}

TEST(LuSVNCoderTest, NestingIsLimited)
{
    auto chain = [](int depth, bool throughArrays) {
        auto node = std::make_shared<CoderTestBranch>("bottom", 0);
        for (int i = 1; i < depth; ++i) {
            auto parent = std::make_shared<CoderTestBranch>(std::nullopt, i);
            if (throughArrays)
                parent->children = std::vector<std::shared_ptr<CoderTestNode>>{node};
            else
                parent->first = node;
            node = parent;
        }
        return node;
    };
    for (bool throughArrays : {false, true}) {
        auto deepest = chain(LuSVNArchiveMaxNestingDepth, throughArrays);
        auto decoded = roundTrip(*deepest);
        EXPECT_TRUE(deepest->equals(*decoded));

        auto tooDeep = chain(LuSVNArchiveMaxNestingDepth + 1, throughArrays);
        std::string reason = invalidArgumentReason([&] { LuSVNKeyedArchiver::archivedDataWithRootObject(*tooDeep); });
        EXPECT_NE(reason.find("objects nest too deeply"), std::string::npos) << reason;
    }

    // Text that nests one object too deep without being too deep for JSON.
    std::string text;
    for (int i = 0; i <= LuSVNArchiveMaxNestingDepth; ++i)
        text += R"({"$class":"CoderTestBranch","first":)";
    text += "null" + std::string(LuSVNArchiveMaxNestingDepth + 1, '}');
    EXPECT_EQ(invalidArgumentReason([&] { LuSVNKeyedUnarchiver::unarchiveObjectWithData(text); }),
              "Cannot decode object for key first: objects nest too deeply");

    // An object graph with a cycle ends in the same refusal, not in a crash.
    CoderTestScripted cycle([](LuSVNCoder&) {});
    cycle.script = [&cycle](LuSVNCoder& coder) { coder.encodeObject(cycle, "self"); };
    EXPECT_EQ(invalidArgumentReason([&] { LuSVNKeyedArchiver::archivedDataWithRootObject(cycle); }),
              "Cannot encode object for key self: objects nest too deeply");
}

TEST(LuSVNCoderTest, ArchiverRefusesWhatCannotBeDecoded)
{
    struct Case {
        std::function<void(LuSVNCoder&)> script;
        const char* reason;
    } cases[] = {
        {[](LuSVNCoder& c) { c.encodeInt64(1, "k"); c.encodeBool(true, "k"); }, "Key k encoded twice"},
        {[](LuSVNCoder& c) { c.encodeInt64(1, "k"); c.encodeObject(nullptr, "k"); }, "Key k encoded twice"},
        {[](LuSVNCoder& c) { c.encodeString("x", "$class"); }, "Cannot encode reserved key $class"},
        {[](LuSVNCoder& c) { c.encodeInt64(1, "$ref"); }, "Cannot encode reserved key $ref"},
        {[](LuSVNCoder& c) { c.encodeInt64(1, "\xc3"); }, "Cannot encode a key that is not valid UTF-8"},
        {[](LuSVNCoder& c) { c.encodeString("a\xff", "s"); }, "Cannot encode string for key s: not valid UTF-8"},
        {[](LuSVNCoder& c) { c.encodeString("\xed\xa0\x80", "s"); }, "Cannot encode string for key s: not valid UTF-8"},
        {[](LuSVNCoder& c) { c.encodeString("\xc0\xaf", "s"); }, "Cannot encode string for key s: not valid UTF-8"},
        {[](LuSVNCoder& c) { c.encodeString("\xf4\x90\x80\x80", "s"); },
         "Cannot encode string for key s: not valid UTF-8"},
        {[](LuSVNCoder& c) { c.encodeStringArray(std::vector<std::string>{"ok", "\x80"}, "a"); },
         "Cannot encode string for key a: not valid UTF-8"},
        {[](LuSVNCoder& c) {
             c.encodeObjectArray(std::vector<const LuSVNCoding*>{nullptr}, "a");
         },
         "Cannot encode a nil element in the array for key a"},
        {[](LuSVNCoder& c) { c.encodeObject(CoderTestScripted([](LuSVNCoder&) {}, ""), "o"); },
         "Cannot encode object for key o: invalid class name"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(invalidArgumentReason([&] { LuSVNKeyedArchiver::archivedDataWithRootObject(CoderTestScripted(c.script)); }),
                  c.reason);
}

TEST(LuSVNCoderTest, ArchiverAcceptsEveryFormOfNestedObject)
{
    CoderTestPoint point(1, 2);
    auto shared = std::make_shared<CoderTestPoint>(3, 4);
    std::vector<std::unique_ptr<CoderTestPoint>> owned;
    owned.push_back(std::make_unique<CoderTestPoint>(5, 6));
    std::optional<std::vector<CoderTestPoint>> noArray;
    bool containedBefore = true, containedAfter = false;
    CoderTestScripted holder([&](LuSVNCoder& c) {
        containedBefore = c.containsValueForKey("byReference");
        c.encodeObject(point, "byReference");
        containedAfter = c.containsValueForKey("byReference");
        c.encodeObject(&point, "byPointer");
        c.encodeObject(shared, "shared");
        c.encodeObject(std::optional<CoderTestPoint>(), "noValue");
        c.encodeObjectArray(owned, "owned");
        c.encodeObjectArray(std::vector<const CoderTestPoint*>{&point, shared.get()}, "pointers");
        c.encodeObjectArray(noArray, "noArray");
    });
    std::string text = LuSVNKeyedArchiver::archivedDataWithRootObject(holder);
    EXPECT_FALSE(containedBefore);
    EXPECT_TRUE(containedAfter);

    std::vector<std::optional<CoderTestPoint>> single;
    std::vector<std::optional<std::vector<CoderTestPoint>>> arrays;
    ScopedClass decoding("CoderTestScripted", [&](LuSVNCoder& c) {
        for (const char* key : {"byReference", "byPointer", "shared", "noValue"})
            single.push_back(c.decodeValueOfClassForKey<CoderTestPoint>(key));
        for (const char* key : {"owned", "pointers", "noArray"})
            arrays.push_back(c.decodeArrayOfValuesOfClassForKey<CoderTestPoint>(key));
        return std::make_shared<CoderTestScripted>([](LuSVNCoder&) {});
    });
    LuSVNKeyedUnarchiver::unarchiveObjectWithData(text);
    std::vector<std::optional<CoderTestPoint>> expectedSingle{point, point, *shared, std::nullopt};
    std::vector<std::optional<std::vector<CoderTestPoint>>> expectedArrays{
        std::vector<CoderTestPoint>{*owned[0]}, std::vector<CoderTestPoint>{point, *shared}, std::nullopt};
    EXPECT_EQ(single, expectedSingle);
    EXPECT_EQ(arrays, expectedArrays);
}

TEST(LuSVNCoderTest, RegistryReplacesRemovesAndWorksAcrossThreads)
{
    EXPECT_EQ(invalidArgumentReason([] { LuSVNRegisterArchivableClass("", [](LuSVNCoder& c) {
                  return std::make_shared<CoderTestNode>(c);
              }); }),
              "Cannot register an archivable class without a name");

    const std::string archive = R"({"$class":"CoderTestAlias","name":"x","id":3})";
    {
        ScopedClass alias("CoderTestAlias", &LuSVNDecodeArchivableObject<CoderTestNode>);
        EXPECT_EQ(typeid(*LuSVNKeyedUnarchiver::unarchiveObjectWithData(archive)), typeid(CoderTestNode));
        LuSVNRegisterArchivableClass("CoderTestAlias", &LuSVNDecodeArchivableObject<CoderTestLeaf>);
        EXPECT_EQ(typeid(*LuSVNKeyedUnarchiver::unarchiveObjectWithData(archive)), typeid(CoderTestLeaf));
    }
    EXPECT_FALSE(LuSVNArchivableClassDecoder("CoderTestAlias"));
    EXPECT_EQ(invalidArgumentReason([&] { LuSVNKeyedUnarchiver::unarchiveObjectWithData(archive); }),
              "Cannot decode object of unknown class CoderTestAlias for key root");

    ScopedClass empty("CoderTestEmpty", [](LuSVNCoder&) { return std::shared_ptr<LuSVNCoding>(); });
    EXPECT_EQ(invalidArgumentReason([] { LuSVNKeyedUnarchiver::unarchiveObjectWithData(R"({"$class":"CoderTestEmpty"})"); }),
              "Decoding of class CoderTestEmpty for key root made no object");

    std::vector<std::thread> threads;
    std::vector<int> failures(8);
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([t, &failures] {
            const std::string name = "CoderTestThread" + std::to_string(t);
            for (int i = 0; i < 200; ++i) {
                LuSVNRegisterArchivableClass(name, &LuSVNDecodeArchivableObject<CoderTestNode>);
                auto leaf = makeLeaf(name, i);
                auto decoded = roundTrip(*leaf);
                auto renamed = LuSVNKeyedUnarchiver::unarchiveObjectOfClass<CoderTestNode>(
                    R"({"$class":")" + name + R"(","id":)" + std::to_string(i) + "}");
                if (!leaf->equals(*decoded) || renamed->id != i)
                    ++failures[t];
                LuSVNRegisterArchivableClass(name, {});
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(failures, std::vector<int>(8, 0));
}

TEST(LuSVNDataTest, ValueSemantics)
{
    const std::uint8_t bytes[] = {1, 2, 0, 0xFF};
    LuSVNData data(bytes, sizeof bytes);
    EXPECT_EQ(data.size(), 4u);
    EXPECT_FALSE(data.empty());
    EXPECT_EQ(data.bytes(), std::vector<std::uint8_t>(bytes, bytes + 4));
    EXPECT_NE(data.data(), bytes);
    EXPECT_EQ(data, LuSVNData(std::vector<std::uint8_t>{1, 2, 0, 0xFF}));
    EXPECT_TRUE(LuSVNData(nullptr, 0).empty());
    EXPECT_THROW(LuSVNData(nullptr, 1), LuSVNInternalInconsistencyException);

    // Ordered bytewise as unsigned, a prefix first.
    std::vector<LuSVNData> ascending{LuSVNData(), LuSVNData(bytes, 1), LuSVNData(bytes, 2), LuSVNData(bytes + 1, 1),
                                     LuSVNData(bytes + 3, 1)};
    for (std::size_t i = 0; i + 1 < ascending.size(); ++i) {
        EXPECT_LT(ascending[i], ascending[i + 1]) << i;
        EXPECT_NE(ascending[i], ascending[i + 1]) << i;
    }
    std::unordered_set<LuSVNData> set(ascending.begin(), ascending.end());
    set.insert(LuSVNData(bytes, 2));
    EXPECT_EQ(set.size(), ascending.size());
    EXPECT_EQ(std::hash<LuSVNData>()(LuSVNData(bytes, 2)), std::hash<LuSVNData>()(ascending[2]));
}
