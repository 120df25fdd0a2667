// User data and what may stand in it.
#include "Tree.h"
#include "UserText.h"

#include <qt/QTAtoms.h>

namespace Ketra::Tool {

namespace {

void addEntries(const std::vector<QT::QTDataAtom*>& entries, Node& node) {
    for (const QT::QTDataAtom* entry : entries) {
        Node item;
        if (const std::string text = userText(*entry); !text.empty()) {
            item.fields["text"] = text;
        } else {
            item.fields["data"] = hexText(entry->getData(), entry->getSize() > 8 ? entry->getSize() - 8 : 0);
        }
        node.children.push_back(itemJson(codeText(entry->getType()), entry->getSize(), std::move(item)));
    }
}

template <class Atom>
void describeEntries(const Atom& atom, Node& node) {
    addEntries(atom.getDataAtoms(), node);
}

void describeNsav(const QT::NSAV& atom, Node& node) {
    node.fields["allow_transcoding"] = atom.getAllowTranscoding();
}

void describeTsel(const QT::TSEL& atom, Node& node) {
    addVersion(atom, node);
    Json attributes = Json::array();
    for (const unsigned int attribute : atom.getAttributeList()) {
        attributes.push_back(codeText(attribute));
    }
    node.fields["switch_group"] = atom.getSwitchGroup();
    node.fields["attributes"] = std::move(attributes);
}

} // namespace

const Describers& userDescribers() {
    static const Describers table = {
        on<QT::UDTA>(describeEntries<QT::UDTA>),
        on<QT::HNTI>(describeEntries<QT::HNTI>),
        on<QT::HINF>(describeEntries<QT::HINF>),
        on<QT::NSAV>(describeNsav),
        on<QT::TSEL>(describeTsel),
    };
    return table;
}

} // namespace Ketra::Tool
