#pragma once

// A document as a production project has it, for the project-file tests.
#include "doc/KCDataDoc.h"
#include "doc/KCLayoutNames.h"
#include "host/KCMainProgDataExChange.h"
#include "KCTempDir.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

inline DEVICE_KRLXDEF_ITEM testProjectDevice()
{
    DEVICE_KRLXDEF_ITEM d;
    d.name = "TEST27C020";
    d.vendor = "Test";
    d.bufferSize = 0x200;
    d.BEA = d.DEA = d.DMA = 0x1FF;
    d.layout = LAYOUT_BYTEVIEW;
    d.defaultFileType = "intel";
    d.numericKeys = {{"PGMFW", 7}};
    d.textKeys = {{"ALGO", "fast"}};
    return d;
}

// Device, edited record, data, serial settings, counts, tree items, window placement and a
// CSV serial project whose file is written to `csvPath`.
inline void makeTestProject(KCDataDoc &doc, KCMainProgDataExChange &host, const std::string &csvPath)
{
    ASSERT_TRUE(doc.selectDevice(testProjectDevice()));
    doc.AlgoParam().algoUiData().optionFields[3] = 0x5A;
    const uint8_t bytes[] = {1, 2, 3, 4};
    doc.defineNothing();
    doc.WriteRange(0x10, bytes, 4);
    doc.SetData(0xAB, 0x1FF);
    doc.setSerialAddress(0x40);
    doc.setSerialByteCount(4);
    doc.setSerialFlags(0x21);
    doc.setSerialDefPath("/tmp/line1.ser");
    doc.setSaveRange(KCAddressRange{0x10, 0x7F});
    host.SetCounts(5, 2);
    host.SetTargetCount(500);
    doc.viewItems()[0].text2 = "Läuft \"A\"";
    doc.viewItems()[0].extra1 = -7;
    TAG_DATADOC_VIEWITEM counter;
    counter.kind = VIEWITEM_KIND_COUNTER;
    counter.text1 = "Counter";
    counter.flags = 0x40000000;
    doc.viewItems().push_back(counter);
    doc.setWindowPlacement({-20, 15, 640, 480, PLACEMENT_MAXIMIZED});
    // Bytes that are not UTF-8 and CR LF line ends travel as they are.
    writeFile(csvPath, "#var,SERIAL,0x100,8,asc\r\nUSED,SERIAL\r\n,SN\xE9" "00001\r\n");
    std::string error;
    ASSERT_TRUE(doc.setCSVSerialProjectFile(csvPath, error)) << error;
}

// What a view item keeps in a file: everything but its run-time links.
inline std::vector<std::string> savedViewItems(const KCDataDoc &doc)
{
    std::vector<std::string> items;
    for (const TAG_DATADOC_VIEWITEM &i : doc.viewItems())
        items.push_back(std::to_string(i.kind) + "|" + std::to_string(i.number) + "|" + std::to_string(i.flags) + "|"
                        + i.text1 + "|" + i.text2 + "|" + i.text3 + "|" + std::to_string(i.extra1) + "|"
                        + std::to_string(i.extra2));
    return items;
}
