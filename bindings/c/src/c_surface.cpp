// The host's drawing surface as C callbacks, and the two drawings.
#include "c_support.h"
#include "velqua/superficie.h"
#include "velqua/texto.h"

namespace {

// A velqua_superficie seen by the library as its Superficie; texts reach the
// callbacks as UTF-8 that lives for the call.
class CSurface : public velqua::Superficie {
 public:
  explicit CSurface(const velqua_superficie& s) : s_(s) {}

  // Whether every callback is there (the drawings call them all).
  static bool Complete(const velqua_superficie& s) {
    return s.font_name && s.font_size && s.font_bold && s.fore_color && s.current_x &&
           s.current_y && s.text_height && s.line && s.print && s.twips_per_pixel_x &&
           s.twips_per_pixel_y;
  }

  void FontName(const std::u16string& cadNombre) override {
    s_.font_name(s_.usuario, velqua::AUtf8(cadNombre).c_str());
  }
  void FontSize(int16_t intPuntos) override { s_.font_size(s_.usuario, intPuntos); }
  void FontBold(bool bolNegrita) override { s_.font_bold(s_.usuario, bolNegrita); }
  void ForeColor(int32_t lnColor) override { s_.fore_color(s_.usuario, lnColor); }
  void CurrentX(float sglX) override { s_.current_x(s_.usuario, sglX); }
  void CurrentY(float sglY) override { s_.current_y(s_.usuario, sglY); }
  float TextHeight(const std::u16string& cadTexto) override {
    return s_.text_height(s_.usuario, velqua::AUtf8(cadTexto).c_str());
  }
  void Line(int16_t intFlags, float x1, float y1, float x2, float y2, int32_t lnColor) override {
    s_.line(s_.usuario, intFlags, x1, y1, x2, y2, lnColor);
  }
  void Print(const std::u16string& cadTexto) override {
    s_.print(s_.usuario, velqua::AUtf8(cadTexto).c_str());
  }
  float TwipsPerPixelX() const override { return s_.twips_per_pixel_x(s_.usuario); }
  float TwipsPerPixelY() const override { return s_.twips_per_pixel_y(s_.usuario); }

 private:
  const velqua_superficie& s_;
};

const velqua_superficie& Surface(const velqua_superficie* s) {
  if (s == nullptr || !CSurface::Complete(*s)) velqua_c::ThrowArgument();
  return *s;
}

}  // namespace

extern "C" {

int32_t velqua_cfg_dibuja_configuracion_smdr(const velqua_cfg* cfg, int32_t puerto,
                                             const velqua_superficie* superficie, float x,
                                             float y) {
  return velqua_c::Guard([&] {
    const velqua::clsCfgConmut& c = velqua_c::Cfg(cfg).cfg();
    CSurface surface(Surface(superficie));
    c.DibujaConfiguracionSMDR(static_cast<velqua::emPuertoSerial>(puerto), surface, x, y);
  });
}

int32_t velqua_cfg_dibuja_tabla_conversion_db9_db25(const velqua_cfg* cfg,
                                                    const velqua_superficie* superficie, float x,
                                                    float y) {
  return velqua_c::Guard([&] {
    const velqua::clsCfgConmut& c = velqua_c::Cfg(cfg).cfg();
    CSurface surface(Surface(superficie));
    c.DibujaTablaConversionDB9DB25(surface, x, y);
  });
}

}  // extern "C"
