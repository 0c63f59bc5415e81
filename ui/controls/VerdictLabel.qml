import QtQuick
import Vorn.Controls

/// Coloured only where something is wrong: a calm day needs no colour in its sentences.
Label {
    required property int status

    medium: true
    color: status >= Status.AtRisk ? Theme.colors.status(status) : Theme.colors.text
    Accessible.ignored: true
}
