#include "update/UpdateTexts.h"

namespace orlet::update_texts {

namespace {

using Step = UpdateScreen::Step;

constexpr char untouched[] = " Rien n'a été installé : la version actuelle reste en place.";

UpdateScreen screen(Step step, std::string title, std::string message) {
  UpdateScreen s;
  s.step = step;
  s.title = std::move(title);
  s.message = std::move(message);
  return s;
}

std::string megabytes(std::uint64_t bytes) {
  const auto tenths = (bytes * 10 + 512 * 1024) / (1024 * 1024);
  return std::to_string(tenths / 10) + "," + std::to_string(tenths % 10) + " Mo";
}

}  // namespace

UpdateScreen checking() {
  auto s = screen(Step::checking, "Mise à jour d'ORLET", "Recherche de mises à jour…");
  s.secondaryButton = "Annuler";
  return s;
}

UpdateScreen upToDate(const std::string& running) {
  auto s = screen(Step::upToDate, "ORLET est à jour",
                  "La version " + running + " est la plus récente disponible.");
  s.secondaryButton = "OK";
  return s;
}

UpdateScreen available(const std::string& offered, const std::string& running) {
  auto s = screen(Step::available, "Une nouvelle version d'ORLET est disponible",
                  "ORLET " + offered + " est disponible (vous avez la version " + running +
                      "). Voulez-vous l'installer maintenant ?");
  s.primaryButton = "Installer";
  s.secondaryButton = "Plus tard";
  return s;
}

UpdateScreen availableFromSystem(const std::string& offered, const std::string& running) {
  auto s = screen(Step::available, "Une nouvelle version d'ORLET est disponible",
                  "ORLET " + offered + " est disponible (vous avez la version " + running +
                      "). Elle s'installe avec les mises à jour du système : ouvrez le "
                      "gestionnaire de mises à jour (ou « sudo apt upgrade »).");
  s.secondaryButton = "OK";
  return s;
}

UpdateScreen downloading(std::uint64_t received, std::uint64_t total) {
  auto s = screen(Step::downloading, "Téléchargement de la mise à jour…",
                  total ? megabytes(received) + " sur " + megabytes(total) : megabytes(received));
  s.progress = total ? static_cast<double>(received) / static_cast<double>(total) : -1;
  s.secondaryButton = "Annuler";
  return s;
}

UpdateScreen verifying() {
  return screen(Step::verifying, "Vérification de la mise à jour…",
                "Contrôle de la taille et de la signature du fichier téléchargé.");
}

UpdateScreen installing() {
  return screen(Step::verifying, "Installation de la mise à jour…",
                "La mise à jour vérifiée est en cours d'installation.");
}

UpdateScreen ready(const std::string& installed) {
  auto s = screen(Step::ready, "ORLET " + installed + " est installé",
                  "Relancez ORLET pour utiliser la nouvelle version.");
  s.primaryButton = "Relancer";
  s.secondaryButton = "Plus tard";
  return s;
}

UpdateScreen failed(std::string message) {
  auto s = screen(Step::failed, "La mise à jour n'a pas abouti", std::move(message));
  s.secondaryButton = "OK";
  return s;
}

std::string notUpdatable() {
  return "Cette copie d'ORLET ne peut pas se mettre à jour elle-même : installez ORLET avec son "
         "paquet .deb ou son archive pour recevoir les mises à jour.";
}

std::string noFeed(bool fromSystem) {
  return fromSystem ? "Cette copie d'ORLET ne recherche pas elle-même ses mises à jour : les mises "
                      "à jour du système apportent ses nouvelles versions."
                    : "Cette copie d'ORLET a été construite sans canal de mise à jour : elle ne "
                      "peut pas en rechercher.";
}

std::string feedUnreachable(const std::string& detail) {
  return "Le serveur des mises à jour ne répond pas (" + detail + "). Réessayez plus tard.";
}

std::string feedUnreadable() {
  return "Les informations de mise à jour reçues du serveur sont illisibles." +
         std::string(untouched);
}

std::string offerInvalid() {
  return "Les informations de la nouvelle version sont incomplètes ou invalides ; elle a été "
         "refusée." +
         std::string(untouched);
}

std::string downloadFailed(const std::string& detail) {
  return "Le téléchargement a échoué (" + detail + ")." + std::string(untouched);
}

std::string refused(Verdict verdict, std::uint64_t received, std::uint64_t announced) {
  switch (verdict) {
    case Verdict::noKey:
      return "Cette copie d'ORLET a été construite sans clé de vérification : la mise à jour ne "
             "peut pas être vérifiée." +
             std::string(untouched);
    case Verdict::wrongLength:
      return "Le fichier téléchargé n'a pas la taille annoncée (" + std::to_string(received) +
             " octets au lieu de " + std::to_string(announced) + ") : il est incomplet ou altéré." +
             std::string(untouched);
    case Verdict::unsigned_:
      return "La mise à jour n'est pas signée : elle a été refusée." + std::string(untouched);
    case Verdict::badSignature:
      return "La signature de la mise à jour n'est pas valide : le fichier a été altéré ou ne "
             "vient pas de l'éditeur d'ORLET. Il a été refusé." +
             std::string(untouched);
    case Verdict::genuine:
      break;
  }
  return {};
}

std::string installFailed(const std::string& detail) {
  return "L'installation a échoué (" + detail + "). La version actuelle reste en place.";
}

}  // namespace orlet::update_texts
