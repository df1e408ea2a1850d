#include "host/KCClassRegistry.h"
#include "doc/KCDataDoc.h"
#include "KCTestHost.h"
#include "KrldvModule.h"

#include <gtest/gtest.h>

#include <memory>

TEST(KrldvModule, AttachRegistersClassesOnceAndDetachRemovesThem)
{
    KCClassRegistry &registry = KCClassRegistry::instance();
    ASSERT_EQ(krldvModuleEntry(KRLDV_MODULE_ATTACH), 1);
    EXPECT_TRUE(registry.isKindOf("KCDataDoc", "KCDocBase"));
    EXPECT_FALSE(registry.isKindOf("KCUiAdrDataManager", "KCDocBase"));

    KCTestHost host;
    std::unique_ptr<KCDataDoc> doc(static_cast<KCDataDoc *>(registry.find("KCDataDoc")->create()));
    EXPECT_GT(doc->TF_GetMainBufferId(), 0);

    EXPECT_EQ(krldvModuleEntry(KRLDV_MODULE_ATTACH), 0); // loaded twice: refused, first stays
    EXPECT_NE(registry.find("KCDataDoc"), nullptr);

    EXPECT_EQ(krldvModuleEntry(KRLDV_MODULE_DETACH), 1);
    EXPECT_EQ(registry.find("KCDataDoc"), nullptr);
    EXPECT_EQ(krldvModuleEntry(KRLDV_MODULE_DETACH), 1);
}

TEST(KrldvModule, AttachFailsCleanlyWhenANameIsTaken)
{
    KCClassRegistry &registry = KCClassRegistry::instance();
    ASSERT_TRUE(registry.registerClass("KCDataDoc", "", [] { return static_cast<void *>(nullptr); }));
    EXPECT_EQ(krldvModuleEntry(KRLDV_MODULE_ATTACH), 0);
    EXPECT_EQ(registry.find("KCDocBase"), nullptr); // what it had registered is taken back
    registry.unregisterClass("KCDataDoc");
    EXPECT_EQ(krldvModuleEntry(KRLDV_MODULE_ATTACH), 1);
    EXPECT_EQ(krldvModuleEntry(KRLDV_MODULE_DETACH), 1);
}
