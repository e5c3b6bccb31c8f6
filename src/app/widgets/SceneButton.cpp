#include "app/widgets/SceneButton.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <boost/algorithm/string/predicate.hpp>
#include <ctime>
#include <utility>

#include "app/Language.h"
#include "app/drawing/SceneThumbnail.h"
#include "app/files/SceneFiles.h"
#include "gui/Focus.h"
#include "gui/LookAndFeel.h"
#include "gui/components/Images.h"
#include "rendering/TextureManager.h"
#include "util/Encoding.h"
#include "util/FileNames.h"
#include "util/FileSystem.h"

namespace app {
namespace {

using math::Vec2;

constexpr Vec2 TILE_PICTURE(120, 90);  // GUI units
constexpr Vec2 ROW_PICTURE(56, 42);
constexpr float GAP = 6;               // GUI units, round the picture
constexpr float ROW_TEXT_WIDTH = 176;  // at least, so that lists of short names are no slit
constexpr math::Vec4 DATE_COLOR(0.75f, 0.8f, 0.9f, 0.8f);

// Empty for a file that is not there.
String GetDate(const String& path) {
    struct stat info = {};
    if (stat(path.c_str(), &info) != 0) return String();
    std::tm local = {};
    localtime_r(&info.st_mtime, &local);
    std::array<char, 32> text = {};
    std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &local);
    return text.data();
}

// A damaged picture is no better than none, and one of another size, however large, is not the scene's.
rendering::TextureMentorPtr GetPicture(const String& scenePath) {
    const String path = SceneThumbnail::GetPath(scenePath);
    if (!util::FileSystem::Instance().Exists(path) || !SceneThumbnail::IsThumbnail(path)) {
        return rendering::TextureManager::Instance().Get("gui/noscene",
                                                         rendering::Texture::ImageType::Icon());
    }
    return rendering::TextureManager::Make([path]() -> rendering::Texture* {
        try {
            return TextureFromImage(rendering::ImageRGBA32::LoadFile(path),
                                    rendering::Texture::ImageType::Sprite());
        } catch (const std::exception& e) {
            LogException(e, WHERE);
            return nullptr;
        }
    });
}

}  // namespace

static String GetTitleKey(const String& file) {
    return "Scene_" + StripSceneEnding(file);
}

// Of what the program saves for itself; of several programs each has its own autosave.
static String GetOwnTitle(const String& file) {
    if (file == ONEXIT_SCENE) return Translate("SceneLastSession");
    const String stem = StripSceneEnding(AUTOSAVE_SCENE);
    if (!boost::algorithm::starts_with(file, stem)) return String();
    return Translate("SceneAutosaved") + StripSceneEnding(file).substr(stem.size());
}

bool HasSceneTitle(const String& file) {
    return Language::Instance().Has(GetTitleKey(file));
}

String GetSceneTitle(const String& file) {
    constexpr size_t MAX_TITLE = 40;  // characters
    if (HasSceneTitle(file)) return Language::Instance().Get(GetTitleKey(file));
    String title = GetOwnTitle(file);
    if (!title.empty()) return title;
    title = util::Latin1FromUtf8(StripSceneEnding(file));
    for (char& c : title) {
        if (static_cast<unsigned char>(c) < ' ') c = '?';  // a file's name may hold line ends
    }
    return title.size() > MAX_TITLE ? title.substr(0, MAX_TITLE - 3) + "..." : title;
}

void SortByTitle(std::vector<String>& files) {
    std::vector<std::pair<String, String>> rows;  // what to sort by, and the file
    for (const String& file : files) {
        String key = (GetOwnTitle(file).empty() ? "1" : "0") + GetSceneTitle(file);
        for (char& c : key) {
            const auto byte = static_cast<unsigned char>(c);
            if ((byte >= 'A' && byte <= 'Z') || byte >= 0xC0) c = static_cast<char>(byte | 0x20);
        }
        rows.emplace_back(key, file);
    }
    std::sort(rows.begin(), rows.end());
    for (size_t i = 0; i < files.size(); ++i) files[i] = rows[i].second;
}

SceneButton::SceneButton(const String& file, Shape shape, const std::function<void()>& choose)
    : AbstractButton("SceneButton"),
      m_shape(shape),
      m_picture(GetPicture(util::FileSystem::Instance().FindScene(file))),
      m_title(gui::FormatText(GetTextFormat(), GetSceneTitle(file))) {
    SetKey(file);
    SetBorder(gui::LookAndFeel::Get().GetButtonBorder());
    const Vec2 picture = GetPictureSize();
    if (m_shape == Shape::Row) {
        gui::TextFormat format = GetTextFormat();
        format.m_color = DATE_COLOR;
        m_date = gui::FormatText(format, GetDate(util::FileSystem::Instance().FindScene(file)));
        const float text = std::max({m_title.m_width, m_date.m_width, ROW_TEXT_WIDTH});
        SetSize(picture.x + text + 3 * GAP, picture.y + 2 * GAP / 3);
    } else {
        SetSize(std::max(picture.x, m_title.m_width) + 2 * GAP, picture.y + gui::ROW_HEIGHT + GAP);
    }
    AddAction(choose);
}

Vec2 SceneButton::GetPictureSize() const {
    return m_shape == Shape::Row ? ROW_PICTURE : TILE_PICTURE;
}

void SceneButton::DrawComp() {
    MultStateColor();
    AbstractButton::DrawComp();
    const Vec2 picture = GetPictureSize(), size = GetSize();
    if (m_shape == Shape::Row) {
        const Vec2 corner(GAP, (size.y - picture.y) / 2);
        gui::DrawImage(m_picture, corner, corner + picture);
        const float x = picture.x + 2 * GAP, line = GetTextFormat().m_lineHeight;
        gui::DrawText(GetTextFormat(), x, size.y / 2 - line, m_title);
        gui::DrawText(m_date.m_format, x, size.y / 2 + 2, m_date);
    } else {
        const Vec2 corner((size.x - picture.x) / 2, GAP);
        gui::DrawImage(m_picture, corner, corner + picture);
        gui::DrawText(GetTextFormat(), (size.x - m_title.m_width) / 2, picture.y + GAP + 2, m_title);
    }
    gui::Focus::DrawRing(*this);
}

}  // namespace app
