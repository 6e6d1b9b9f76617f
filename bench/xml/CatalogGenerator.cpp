#include "CatalogGenerator.h"
#include "catalog/SafeFileWrite.h"

#include <cstdint>
#include <cstdio>

namespace
{
class Generator
{
public:
    explicit Generator(size_t targetBytes) : m_target(targetBytes)
    {
        m_out.reserve(targetBytes + 4096);
    }

    std::string Catalog()
    {
        m_out += "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                 "<Catalog reference=\"KABELI_SN\" name=\"Kabeli srednjeg napona — vodiči\" "
                 "version=\"7\">\n";
        for (int group = 1; m_out.size() < m_target; ++group)
            Group(1, group);
        m_out += "</Catalog>\n";
        return std::move(m_out);
    }

private:
    uint32_t next()
    {
        m_seed = m_seed * 1664525u + 1013904223u;
        return m_seed >> 8;
    }
    void indent(int level) { m_out.append(size_t(level) * 2, ' '); }
    void guid()
    {
        char text[48];
        std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%04X-%06X%06X}", next(), next() & 0xFFFF,
                      next() & 0xFFFF, next() & 0xFFFF, next() & 0xFFFFFF, next() & 0xFFFFFF);
        m_out += text;
    }

    void Group(int level, int ord)
    {
        static const char* const names[] = {"Energetski kabeli 10 kV", "Kabeli 20 kV — Cu",
                                            "Nadzemni vodovi Al/Č", "Kabelske spojnice i završeci"};
        indent(level);
        m_out += "<Group guid=\"";
        guid();
        m_out += "\" name=\"";
        m_out += names[next() % 4];
        m_out += "\" ord=\"" + std::to_string(ord) + "\" flags=\"1\">\n";
        const int items = 20 + int(next() % 20);
        for (int i = 1; i <= items && m_out.size() < m_target; ++i)
            Item(level + 1, i);
        if (level < 3)
            for (int sub = 1; sub <= 2 && m_out.size() < m_target; ++sub)
                Group(level + 1, items + sub);
        indent(level);
        m_out += "</Group>\n";
    }

    void Item(int level, int ord)
    {
        static const char* const cables[] = {"Kabel NA2XS(F)2Y 1x150 — čćžšđ",
                                             "Kabel XHE 49-A 3x(1x240)", "Vod Al/Če 95/15 — ČĆŽŠĐ",
                                             "Kabel NA2XS2Y 1x240/25 12/20 kV"};
        indent(level);
        m_out += "<Item guid=\"";
        guid();
        m_out += "\" name=\"";
        m_out += cables[next() % 4];
        m_out += "\" ord=\"" + std::to_string(ord) + "\" flags=\"0\" default=\"" +
                 (ord == 1 ? "1" : "0") + "\">\n";
        Category(level + 1, "Električni podaci", 6);
        Category(level + 1, "Mehanički podaci", 4);
        indent(level + 1);
        m_out += "<Picture file=\"kabel_" + std::to_string(next() % 500) + ".png\"/>\n";
        indent(level);
        m_out += "</Item>\n";
    }

    void Category(int level, const char* name, int properties)
    {
        static const char* const tags[] = {"R20", "X",    "C",       "Ith",
                                           "Un",  "Masa", "Promjer", "Napomena"};
        indent(level);
        m_out += "<Category name=\"";
        m_out += name;
        m_out += "\">\n";
        for (int p = 0; p < properties; ++p)
        {
            indent(level + 1);
            const uint32_t v = next();
            m_out += "<Property tag=\"";
            m_out += tags[v % 8];
            if (v % 8 == 7)
                m_out += "\" type=\"string\" value=\"Položen u zemlju, dubina 0,8 m\"/>\n";
            else
                m_out += "\" type=\"double\" value=\"" + std::to_string((v % 100000) / 1000.0) +
                         "\"/>\n";
        }
        indent(level);
        m_out += "</Category>\n";
    }

    size_t m_target;
    uint32_t m_seed = 20240611u;
    std::string m_out;
};
} // namespace

bool WriteCatalogFile(const std::string& path, size_t targetBytes)
{
    const std::string text = Generator(targetBytes).Catalog();
    QString why;
    return ZEVGis::Data::WriteFileSafely(QString::fromStdString(path),
                                         QByteArray::fromRawData(text.data(), qsizetype(text.size())), why);
}
